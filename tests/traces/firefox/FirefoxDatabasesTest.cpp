#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/traces/firefox/internal/FirefoxDatabases.h"

#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
#include "tests/support/FirefoxSchemas.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PlantedRows.h"
#include "tests/support/Planting.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

using tests::contentsOf;
using tests::Database;
using tests::filesHolding;
using tests::PlantedRows;
using tests::Planting;
using tests::TemporaryFolder;
using tests::withSecondSite;

const PlantedRows heldRows{
    "moz_places|id=50|url='https://www.bookmarked.test/page'|origin_id=50|guid='held'",
    "moz_origins|id=50|prefix='https://'|host='www.bookmarked.test'",
    "moz_bookmarks|id=50|fk=50|title='bookmark'",
    "moz_items_annos|id=1|item_id=50|content='kept'",
    "moz_places|id=51|url='https://keyword.test/%s'|guid='keyword'",
    "moz_keywords|id=1|keyword='k'|place_id=51"};

// clang-format off
const std::vector<Planting> plantings{
    {"places.sqlite", heldRows,
     {"moz_origins|id={n}|prefix='https://'|host='www.{s}'",
      "moz_places|id={n}|url='https://www.{s}/page'|title='title {s}'|visit_count=1|last_visit_date=1700000000000000|origin_id={n}",
      "moz_historyvisits|id={n}|place_id={n}|visit_date=1700000000000000",
      "moz_historyvisits_extra|visit_id={n}|sync_json='{s}'",
      "moz_inputhistory|place_id={n}|input='typed {s}'", "moz_annos|id={n}|place_id={n}|content='/downloads/{s}'",
      "moz_places_metadata_search_queries|id={n}|terms='words on {s}'",
      "moz_places_metadata|id={n}|place_id={n}|search_query_id={n}", "moz_places_extra|place_id={n}|sync_json='{s}'",
      "moz_newtab_shortcuts_interaction|id={n}|place_id={n}"},
     {"moz_places_metadata|id=21|created_at=21|place_id=2|referrer_place_id=1", "moz_origins|id=21|prefix='http://'|host='{s}'"},
     {"moz_historyvisits|id=91|place_id=91", "moz_historyvisits_extra|visit_id=92", "moz_inputhistory|place_id=91|input='x'", "moz_annos|id=91|place_id=91",
      "moz_places_metadata_search_queries|id=91|terms='lost'", "moz_places_metadata|id=91|place_id=91",
      "moz_places_metadata|id=92|created_at=92|place_id=51|referrer_place_id=91", "moz_places_extra|place_id=91", "moz_newtab_shortcuts_interaction|id=91|place_id=91",
      "moz_previews_tombstones|hash='lost'", "moz_newtab_story_click|feature='lost'", "moz_newtab_story_impression|feature='lost'"}},
    {"favicons.sqlite",
     {"moz_pages_w_icons|id=50|page_url='https://www.bookmarked.test/page'", "moz_icons|id=50|icon_url='https://icons.test/b'|data='bitmap'",
      "moz_icons_to_pages|page_id=50|icon_id=50", "moz_icons|id=51|icon_url='https://www.bookmarked.test/favicon.ico'|root=1"},
     {"moz_pages_w_icons|id={n}|page_url='https://www.{s}/page'", "moz_icons|id={n}|icon_url='https://icons.{s}/i'|data='bitmap {s}'",
      "moz_icons_to_pages|page_id={n}|icon_id={n}", "moz_icons|id={n}0|icon_url='https://www.{s}/favicon.ico'|root=1"},
     {"moz_icons|id=21|icon_url='https://other.{s}/i';;moz_icons_to_pages|page_id=2|icon_id=21"},
     {"moz_icons|id=91|icon_url='https://unlinked.test/i'", "moz_icons_to_pages|page_id=92|icon_id=2", "moz_icons_to_pages|page_id=2|icon_id=92"}},
    {"cookies.sqlite", {},
     {"moz_cookies|id={n}|name='n'|value='value {s}'|host='.{s}'|lastAccessed=1700000000000000"},
     {"moz_cookies|id=21|name='p'|host='{t}'|originAttributes='^partitionKey=%28https%2C{s}%29'", "moz_cookies|id=22|name='p'|host='x.{s}'|originAttributes='^partitionKey=%28https%2C{t}%29'"}, {}},
    {"formhistory.sqlite", {}, {}, {},
     {"moz_formhistory|id=1|fieldname='f'|value='typed'", "moz_deleted_formhistory|id=1", "moz_sources|id=1|source='engine'", "moz_history_to_sources|history_id=1|source_id=1"}},
    {"permissions.sqlite", {},
     {"moz_perms|id={n}|origin='https://www.{s}'|type='geo'", "moz_perms|id={n}0|origin='https://www.{s}'|type='storageAccessAPI'",
      "moz_hosts|id={n}|host='www.{s}'", "moz_origin_interactions|origin='https://www.{s}'"},
     {"moz_perms|id=21|origin='https://{t}'|type='3rdPartyStorage^https://{s}'", "moz_perms|id=22|origin='https://{s}^partitionKey=%28https%2C{t}%29'|type='3rdPartyStorage^https://{t}'",
      "moz_perms|id=23|origin='https://{t}'|type='other^https://{s}'"}, {}},
    {"content-prefs.sqlite", {"settings|id=1|name='browser.content.full-zoom'", "settings|id=2|name='browser.download.lastDir'", "prefs|id=50|settingID=1|value='global'"},
     {"groups|id={n}|name='www.{s}'", "prefs|id={n}|groupID={n}|settingID=1|value=1.3", "prefs|id={n}0|groupID={n}|settingID=2|value='/downloads'"},
     {"groups|id=21|name='https://{s}/page'", "groups|id=22|name='{s}';;prefs|id=22|groupID=22|settingID=1", "groups|id=23|name='{s}';;prefs|id=23|groupID=23|settingID=2"},
     {"prefs|id=91|groupID=91|settingID=1"}},
    {"bounce-tracking-protection.sqlite", {}, {"sites|siteHost='{s}'|entryType=1|timeStamp=1700000000000000"},
     {"sites|siteHost='{t}'|originAttributeSuffix='^partitionKey=%28https%2C{s}%29'", "sites|siteHost='x.{s}'|originAttributeSuffix='^partitionKey=%28https%2C{t}%29'"}, {}},
    {"webappsstore.sqlite", {}, {"webappsstore2|originKey='{r}.:https:443'|key='key'|value='value {s}'"},
     {"webappsstore2|originKey='x.test'|originAttributes='^partitionKey=%28https%2C{s}%29'"}, {}},
    {"storage.sqlite", {"database|cache_version=1", "repository|id=0|name='persistent'", "repository|id=2|name='default'",
      "origin|repository_id=2|origin='moz-extension://abc'|group_='abc'", "origin|repository_id=0|origin='indexeddb+++fx'|group_='fx'"},
     {"origin|repository_id=2|origin='https://www.{s}'|group_='{s}'|last_access_time=1700000000000000"},
     {"origin|repository_id=2|origin='https://{t}^partitionKey=%28https%2C{s}%29'|group_=''", "origin|repository_id=2|origin='https://{t}'|suffix='^partitionKey=%28https%2C{s}%29'|group_=''"}, {}},
    {"protections.sqlite", {}, {}, {}, {"events|id=1|type=2|count=3"}},
};
// clang-format on

class FirefoxDatabases : public testing::TestWithParam<Planting> {
protected:
    static constexpr const char* gone = "gonehost.test";
    static constexpr const char* kept = "kepthost.test";

    FirefoxDatabases() {
        home_.makeFolder("tmp");
        if (planting().file != "places.sqlite") {
            tests::plant(tests::makeFirefoxDatabase(home_ / "profile", "places.sqlite"), heldRows,
                         "", 0);
        }
    }

    const Planting& planting() const { return GetParam(); }

    static PlantedRows ofSite(PlantedRows rows, const std::string& site) {
        for (std::string& row : rows) {
            const auto at = row.find("{r}");
            if (at != std::string::npos) {
                row.replace(at, 3, std::string(site.rbegin(), site.rend()));
            }
        }
        return rows;
    }

    Database made(const std::string& folder, const std::vector<std::string>& sites) const {
        Database database = tests::makeFirefoxDatabase(home_ / folder, planting().file);
        tests::plant(database, planting().ofBrowser, "", 0);
        for (const std::string& site : sites) {
            tests::plant(database, ofSite(planting().ofSite, site), site, site == gone ? 1 : 2);
        }
        return database;
    }

    Lines contentsMade(const std::vector<std::string>& sites) const {
        made("expected", sites);
        Lines contents = contentsOf(home_ / "expected" / planting().file);
        fs::remove_all(home_ / "expected");
        return contents;
    }

    fs::path file() const { return home_ / "profile" / planting().file; }

    ForgetOutcome forget(const SiteSelection& selection) const {
        for (const auto& each : firefoxDatabaseStores(home_ / "profile", manager_)) {
            if (each->path() == file()) {
                return each->forget({selection, {}, true, true, {}});
            }
        }
        return {{}, false};
    }

    std::span<const TraceTable> rules() const {
        for (const FirefoxDatabase& database : firefoxDatabases()) {
            if (database.file == planting().file) {
                return database.tables;
            }
        }
        return {};
    }

    /** Whether a site goes by these rules as it should: with all its rows, and with each. */
    bool isAllForgottenBy(std::span<const TraceTable> tried) const {
        const PlantedRows own = ofSite(planting().ofSite, gone);
        std::vector<PlantedRows> trials{own, planting().lost};
        for (const std::string& row : withSecondSite(planting().crossing, kept)) {
            trials.push_back(own);
            trials.back().push_back(row);
        }
        trials.at(1).insert(trials.at(1).end(), own.begin(), own.end());
        return std::all_of(trials.begin(), trials.end(),
                           [&](const PlantedRows& rows) { return isForgottenBy(tried, rows); });
    }

    bool isForgottenBy(std::span<const TraceTable> tried, const PlantedRows& rows) const {
        tests::plant(made("profile", {kept}), rows, gone, 1);
        const auto held = [] {
            return ProtectedAddresses{"https://www.bookmarked.test/page",
                                      "https://www.bookmarked.test/favicon.ico"};
        };
        DatabaseTraceStore({file(), tried, held}, manager_)
            .forget({SiteSelection::only({*Site::ofHost(gone)}), {}, true, true, {}});
        const bool isForgotten = contentsOf(file()) == contentsMade({kept});
        fs::remove(file());
        return isForgotten;
    }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_P(FirefoxDatabases, everyRuleIsNeeded) {
    const std::span<const TraceTable> all = rules();
    for (std::size_t left = 0; left < all.size(); ++left) {
        std::vector<TraceTable> others(all.begin(), all.end());
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(left));
        // What a held page loses, and what goes with one kind alone, has tests of its own.
        const bool isOfOneKind = all[left].name == "groups";
        const bool isOfHeldPage =
            planting().file == "places.sqlite" &&
            (all[left].rule == TableRule::follows || all[left].rule == TableRule::resets);
        EXPECT_TRUE(isOfHeldPage || isOfOneKind || !isAllForgottenBy(others))
            << left << " " << all[left].name;
    }
    EXPECT_TRUE(isAllForgottenBy(all));
}

TEST_P(FirefoxDatabases, oneSiteIsForgottenInEveryColumnAndTheOtherStaysAsItIs) {
    {
        const Database database = made("profile", {kept});
        tests::plantDeleted(database, ofSite(planting().ofSite, gone), gone, 1);
        tests::plant(database, ofSite(planting().ofSite, gone), gone, 1);
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
    }
    EXPECT_EQ(forget(SiteSelection::only({*Site::ofHost(gone)})), ForgetOutcome{});
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(FirefoxDatabases, eachRowThatNamesASiteInOneColumnIsForgottenByItself) {
    for (const std::string& row : withSecondSite(planting().crossing, kept)) {
        SCOPED_TRACE(row);
        {
            const Database database = made("profile", {kept, gone});
            tests::plant(database, {row}, gone, 1);
        }
        forget(SiteSelection::only({*Site::ofHost(gone)}));
        EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
        fs::remove(file());
    }
}

TEST_P(FirefoxDatabases, allButOneSiteIsForgotten) {
    {
        const Database database = made("profile", {kept, gone});
        tests::plant(database, planting().lost, gone, 1);
    }
    forget(SiteSelection::allBut({*Site::ofHost(kept)}));
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(FirefoxDatabases, everythingIsForgottenButWhatIsHeld) {
    {
        const Database database = made("profile", {kept, gone});
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
    }
    forget(SiteSelection::everything());
    EXPECT_EQ(contentsOf(file()), contentsMade({}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
    EXPECT_EQ(filesHolding(file(), kept), Lines{});
    EXPECT_EQ(Database(file()).text("PRAGMA foreign_key_check"), "");
}

TEST_P(FirefoxDatabases, listingChangesNothingAndKnowsTheSites) {
    made("profile", {kept, gone});
    const auto before = home_.snapshot();
    std::set<std::string> names;
    for (const auto& each : firefoxDatabaseStores(home_ / "profile", manager_)) {
        if (each->path() == file()) {
            for (const Trace& trace : each->list({}).bySite) {
                names.insert(trace.site.name());
            }
        }
    }
    EXPECT_EQ(names, planting().ofSite.empty() ? std::set<std::string>{}
                                               : (std::set<std::string>{gone, kept}));
    EXPECT_TRUE(home_.snapshot() == before);
}

INSTANTIATE_TEST_SUITE_P(OfAllFiles, FirefoxDatabases, testing::ValuesIn(plantings), tests::nameOf);

TEST(FirefoxContentPreferences, aSitesNameGoesWithTheLastOfItsNotesAndSettings) {
    const TemporaryFolder home(tests::folderInMemory());
    home.makeFolder("tmp");
    const auto manager = tests::GuardedFileManager::forFixture(home);
    for (const auto& [kind, setting, isGone] :
         {std::tuple(TraceKind::predictions, "browser.download.lastDir", true),
          std::tuple(TraceKind::predictions, "browser.content.full-zoom", false),
          std::tuple(TraceKind::settings, "browser.content.full-zoom", true),
          std::tuple(TraceKind::settings, "browser.download.lastDir", false)}) {
        SCOPED_TRACE(setting);
        tests::plant(tests::makeFirefoxDatabase(home.path(), "content-prefs.sqlite"),
                     {std::string("settings|id=1|name='") + setting + "'",
                      "groups|id=1|name='a.test'", "prefs|id=1|groupID=1|settingID=1"},
                     "", 0);
        firefoxDatabaseStores(home.path(), manager)
            .at(5)
            ->forget({SiteSelection::only({*Site::ofHost("a.test")}), {kind}, false, false, {}});
        EXPECT_EQ(Database(home / "content-prefs.sqlite").number("SELECT COUNT(*) FROM groups"),
                  isGone ? 0 : 1);
        EXPECT_EQ(Database(home / "content-prefs.sqlite").number("SELECT COUNT(*) FROM prefs"),
                  isGone ? 0 : 1);
        fs::remove(home / "content-prefs.sqlite");
    }
}

/** A page that a bookmark holds, with all that a visit leaves. */
class HeldPage : public testing::Test {
protected:
    HeldPage() {
        home_.makeFolder("tmp");
        const Database places = tests::makeFirefoxDatabase(home_.path(), "places.sqlite");
        tests::plant(
            places,
            {"moz_places|id=1|url='https://held.test/page'|title='title'|visit_count=3|"
             "typed=1|last_visit_date=1700000000000000|frecency=900|foreign_count=1|"
             "preview_image_url='https://held.test/image'|description='d'|origin_id=1",
             "moz_origins|id=1|prefix='https://'|host='held.test'", "moz_bookmarks|id=7|fk=1",
             "moz_historyvisits|id=1|place_id=1", "moz_inputhistory|place_id=1|input='held'",
             "moz_annos|id=1|place_id=1|content='/downloads'",
             "moz_places_metadata|id=1|place_id=1", "moz_places|id=2|url='https://other.test/'",
             "moz_places_metadata|id=2|place_id=2|referrer_place_id=1",
             "moz_places_extra|place_id=1", "moz_newtab_shortcuts_interaction|id=1|place_id=1"},
            "", 0);
    }

    TraceStores stores() const { return firefoxDatabaseStores(home_.path(), manager_); }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_F(HeldPage, staysWithoutItsVisits) {
    const ForgetRequest request{
        SiteSelection::only({*Site::ofHost("held.test")}), {}, false, false, {}};
    EXPECT_EQ(stores().front()->list({}).bySite.size(), 2U);
    EXPECT_EQ(stores().front()->forget(request), ForgetOutcome{});
    EXPECT_EQ(Database(home_ / "places.sqlite")
                  .text("SELECT url || '|' || title || '|' || visit_count || '|' || typed || '|' ||"
                        " ifnull(last_visit_date, 'none') || '|' || frecency || '|' || "
                        "recalc_frecency || '|' || ifnull(preview_image_url, 'none') || '|' ||"
                        " ifnull(description, 'none') || '|' || foreign_count FROM moz_places"
                        " WHERE id = 1"),
              "https://held.test/page|title|0|0|none|-1|1|none|none|1");
    for (const char* table :
         {"moz_historyvisits", "moz_inputhistory", "moz_annos", "moz_places_metadata",
          "moz_places_extra", "moz_newtab_shortcuts_interaction"}) {
        EXPECT_EQ(
            Database(home_ / "places.sqlite").number("SELECT COUNT(*) FROM " + std::string(table)),
            0)
            << table;
    }
    EXPECT_EQ(Database(home_ / "places.sqlite").number("SELECT COUNT(*) FROM moz_origins"), 1);
    EXPECT_EQ(stores().front()->list({}).bySite.size(), 1U);
    const std::string before = tests::readFile(home_ / "places.sqlite");
    stores().front()->forget(request);
    EXPECT_TRUE(tests::readFile(home_ / "places.sqlite") == before);
}

TEST_F(HeldPage, iconsStayWhereItCannotBeReadWhatIsHeld) {
    tests::plant(tests::makeFirefoxDatabase(home_.path(), "favicons.sqlite"),
                 {"moz_pages_w_icons|id=1|page_url='https://held.test/page'"}, "", 0);
    home_.write("places.sqlite", "damaged");
    EXPECT_THROW(stores().at(1)->forget({SiteSelection::everything(), {}, false, false, {}}),
                 SQLiteError);
    EXPECT_EQ(Database(home_ / "favicons.sqlite").number("SELECT COUNT(*) FROM moz_pages_w_icons"),
              1);
}

}  // namespace
}  // namespace browsersweep
