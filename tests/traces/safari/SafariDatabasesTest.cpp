#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/traces/safari/internal/SafariDatabases.h"

#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PlantedRows.h"
#include "tests/support/Planting.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/SafariSchemas.h"
#include "tests/support/SiteStores.h"
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

const std::string inContainer = "Containers/com.apple.Safari/Data/Library/";

/** A table of pairs, with the first of two sites in each of its columns. */
PlantedRows pairs(const std::string& table, const std::string& one, const std::string& other) {
    return {table + "|" + one + "=1|" + other + "=2", table + "|" + one + "=2|" + other + "=1"};
}

/** In one text, or every rule would be tried with every other one. */
PlantedRows allPairs() {
    std::string all;
    for (const PlantedRows& rows :
         {pairs("StorageAccessUnderTopFrameDomains", "domainID", "topLevelDomainID"),
          pairs("TopFrameUniqueRedirectsTo", "sourceDomainID", "toDomainID"),
          pairs("TopFrameUniqueRedirectsToSinceSameSiteStrictEnforcement", "sourceDomainID",
                "toDomainID"),
          pairs("TopFrameUniqueRedirectsFrom", "targetDomainID", "fromDomainID"),
          pairs("TopFrameLinkDecorationsFrom", "toDomainID", "fromDomainID"),
          pairs("TopFrameLoadedThirdPartyScripts", "topFrameDomainID", "subresourceDomainID"),
          pairs("SubframeUnderTopFrameDomains", "subFrameDomainID", "topFrameDomainID"),
          pairs("SubresourceUnderTopFrameDomains", "subresourceDomainID", "topFrameDomainID"),
          pairs("SubresourceUniqueRedirectsTo", "subresourceDomainID", "toDomainID"),
          pairs("SubresourceUniqueRedirectsFrom", "subresourceDomainID", "fromDomainID")}) {
        for (const std::string& row : rows) {
            all += (all.empty() ? "" : ";;") + row;
        }
    }
    return {all};
}

// clang-format off
const PlantedRows trackedOrigins{"Origins|origin='https_www.{s}_0'|path='https_www.{s}_0.localstorage'"};
const PlantedRows trackedDatabases{"Origins|origin='https_www.{s}_0'", "Databases|guid={n}|origin='https_www.{s}_0'|name='of {s}'"};

const std::vector<Planting> plantings{
    {"Safari/History.db",
     {"metadata|key='k'|value='v'", "history_client_versions|client_version=1", "history_event_listeners|listener_name='l'"},
     {"history_items|id={n}|url='https://www.{s}/page'|domain_expansion='{s}'", "history_visits|id={n}|history_item={n}|visit_time=700000000|title='title {s}'",
      "history_tombstones|id={n}|end_time=700000000|url='https://www.{s}/deleted'", "history_events|id={n}|value='about https://www.{s}/'",
      "history_tags|id={n}|title='topic of {s}'", "history_items_to_tags|history_item={n}|tag_id={n}"},
     {},
     {"history_visits|id=91|history_item=91", "history_items_to_tags|history_item=91|tag_id=2", "history_tags|id=92"}},
    {"Safari/Favicon Cache/favicons.db",
     {"database_info|key='version'", "page_url|url='https://www.bookmarked.test/page'|uuid='B'", "icon_info|uuid='B'|url='https://icons.test/b'"},
     {"page_url|url='https://www.{s}/page'|uuid='U{n}'", "icon_info|uuid='U{n}'|url='https://icons.{s}/i'", "rejected_resources|page_url='https://www.{s}/'|icon_url='https://icons.{s}/no'"},
     {"icon_info|uuid='U21'|url='https://other.{s}/i';;page_url|url='https://www.{t}/other'|uuid='U21'", "rejected_resources|page_url='https://{t}/'|icon_url='https://{s}/i'",
      "icon_info|uuid='U22'|url='https://alone.{s}/i'"},
     {"icon_info|uuid='U91'|url='https://unlinked.test/i'", "page_url|url='https://lost.test/'|uuid='U92'"}},
    {"Safari/Touch Icons Cache/TouchIconCacheSettings.db", {"cache_settings|host='www.bookmarked.test'"}, {"cache_settings|host='www.{s}'"}, {}, {}},
    {"Safari/PerSitePreferences.db", {"default_preferences|id=1"}, {"preference_values|id={n}|domain='www.{s}'|preference='zoom'"}, {}, {}},
    {"Safari/IgnoredSiriSuggestedSites.db", {}, {"ignored_siri_suggested_sites|siriSuggestedSiteURL='https://www.{s}/'"},
     {"ignored_siri_suggested_sites|siriSuggestedSiteURL='https://{t}/'|visitedURL='https://{s}/'"}, {}},
    {"Safari/LocalStorage/StorageTracker.db", {"Origins|origin='safari-extension_com.example_0'"}, trackedOrigins, {}, {}},
    {"Safari/Databases/Databases.db", {}, trackedDatabases, {}, {}},
    {inContainer + "WebKit/WebsiteData/LocalStorage/StorageTracker.db", {}, trackedOrigins, {}, {}},
    {"WebKit/com.apple.Safari/WebsiteData/LocalStorage/StorageTracker.db", {}, trackedOrigins, {}, {}},
    {inContainer + "WebKit/WebsiteData/WebSQL/Databases.db", {}, trackedDatabases, {}, {}},
    {inContainer + "WebKit/WebsiteData/ResourceLoadStatistics/observations.db", {"OperatingDates|year=2026"},
     {"ObservedDomains|domainID={n}|registrableDomain='{s}'|lastSeen=1700000000", "TopLevelDomains|topLevelDomainID={n}"}, allPairs(), {}},
    {"Caches/com.apple.Safari/Cache.db", {"cfurl_cache_schema_version|schema_version=202"},
     {"cfurl_cache_response|entry_ID={n}|request_key='https://www.{s}/x'|time_stamp='t'", "cfurl_cache_blob_data|entry_ID={n}|response_object='{s}'",
      "cfurl_cache_receiver_data|entry_ID={n}|isDataOnFS=0|receiver_data='body {s}'"},
     {"cfurl_cache_response|entry_ID=21|request_key='https://{t}/y'|time_stamp='t'|partition='{s}'"},
     {"cfurl_cache_blob_data|entry_ID=91", "cfurl_cache_receiver_data|entry_ID=92"}},
    {inContainer + "Caches/com.apple.Safari/TabSnapshots/Metadata.db", {}, {"snapshot_metadata|uuid='{n}'|filename='{n}.png'|url='https://www.{s}/'"}, {}, {}},
    {inContainer + "Safari/SafariTabs.db",
     {"bookmarks|id=50|type=1|subtype=2|title='Work'|external_uuid='P'", "bookmarks|id=51|type=1|title='group'|parent=50|external_uuid='G'",
      "bookmarks|id=52|type=0|title='start'|external_uuid='S'", "settings|id=1|key='ProfileColor'|value=1", "sync_properties|key='k'|value='v'", "windows|id=1|uuid='W'"},
     {"bookmarks|id={n}|type=0|parent=51|title='title {s}'|url='https://www.{s}/page'|external_uuid='T{n}'", "bookmark_title_words|id={n}|bookmark_id={n}|word='{s}'",
      "session_state|uuid='T{n}'|data='back to https://www.{s}/'"},
     {"bookmarks|id=21|type=0|url='https://{t}/moved'|extra_attributes='from https://www.{s}/'", "session_state|uuid='S'|data='back to https://www.{s}/'"},
     {"bookmark_title_words|id=91|bookmark_id=91", "session_state|uuid='lost'|data='state'"}},
    {inContainer + "Safari/CloudTabs.db", {"cloud_tab_devices|device_uuid='D'", "metadata|key='k'"},
     {"cloud_tabs|tab_uuid='T{n}'|url='https://www.{s}/'|title='title {s}'", "cloud_tab_close_requests|close_request_uuid='C{n}'|url='https://www.{s}/'"}, {}, {}},
};
// clang-format on

constexpr const char* bookmarks = R"(<plist><dict><key>Children</key><array><dict>
<key>URLString</key><string>https://www.bookmarked.test/page</string></dict></array></dict></plist>)";

class SafariHome : public testing::Test {
protected:
    SafariHome() {
        home_.makeFolder("tmp");
        home_.write("Library/Safari/Bookmarks.plist", bookmarks);
    }

    std::vector<SafariDatabase> rows() const {
        std::vector<SafariDatabase> all(safariDatabases().begin(), safariDatabases().end());
        std::copy(sharedSafariDatabases().begin(), sharedSafariDatabases().end(),
                  std::back_inserter(all));
        return all;
    }

    SafariPlaces places() const {
        SafariPlaces all = safariPlaces(SafariProfile(manager_), manager_);
        all.folders.merge(sharedSafariPlaces(manager_).folders);
        return all;
    }

    std::shared_ptr<const TraceStore> store(const fs::path& file) const {
        return tests::storeAt(databaseStores(rows(), places(), manager_), file);
    }

    fs::path library() const { return home_ / "Library"; }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

class SafariDatabases : public SafariHome, public testing::WithParamInterface<Planting> {
protected:
    static constexpr const char* gone = "gonehost.test";
    static constexpr const char* kept = "kepthost.test";

    const Planting& planting() const { return GetParam(); }
    fs::path file() const { return library() / planting().file; }

    Database made(const fs::path& path, const std::vector<std::string>& sites) const {
        Database database = tests::makeSafariDatabase(path);
        tests::plant(database, planting().ofBrowser, "", 0);
        for (const std::string& site : sites) {
            tests::plant(database, planting().ofSite, site, site == gone ? 1 : 2);
        }
        return database;
    }

    Lines contentsMade(const std::vector<std::string>& sites) const {
        const fs::path path = home_ / "expected" / file().filename();
        made(path, sites);
        Lines contents = contentsOf(path);
        fs::remove_all(path.parent_path());
        return contents;
    }

    ForgetOutcome forget(const SiteSelection& selection) const {
        return store(file())->forget({selection, {}, true, true, {}});
    }

    std::span<const TraceTable> rules() const {
        for (const SafariDatabase& row : rows()) {
            if (planting().file.ends_with("/" + std::string(row.file))) {
                return row.tables;
            }
        }
        return {};
    }

    /** Whether a site goes by these rules as it should: with all its rows, and with each. */
    bool isAllForgottenBy(std::span<const TraceTable> tried) const {
        std::vector<PlantedRows> trials{planting().ofSite, planting().lost};
        for (const std::string& row : withSecondSite(planting().crossing, kept)) {
            trials.push_back(planting().ofSite);
            trials.back().push_back(row);
        }
        trials.at(1).insert(trials.at(1).end(), planting().ofSite.begin(), planting().ofSite.end());
        return std::all_of(trials.begin(), trials.end(),
                           [&](const PlantedRows& rows) { return isForgottenBy(tried, rows); });
    }

    bool isForgottenBy(std::span<const TraceTable> tried, const PlantedRows& rows) const {
        tests::plant(made(file(), {kept}), rows, gone, 1);
        const auto held = [] {
            return ProtectedAddresses{"https://www.bookmarked.test/page", "www.bookmarked.test"};
        };
        DatabaseTraceStore({file(), tried, held}, manager_)
            .forget({SiteSelection::only({*Site::ofHost(gone)}), {}, true, true, {}});
        const bool isForgotten = contentsOf(file()) == contentsMade({kept});
        fs::remove(file());
        return isForgotten;
    }
};

TEST_P(SafariDatabases, everyRuleIsNeeded) {
    const std::span<const TraceTable> all = rules();
    ASSERT_FALSE(all.empty());
    for (std::size_t left = 0; left < all.size(); ++left) {
        std::vector<TraceTable> others(all.begin(), all.end());
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(left));
        // What changes in rows that stay has tests of its own; and so has what is there for the
        // listing and what it finds alone: the dates of visits, and icons that no page has.
        const bool isOfRowThatStays =
            all[left].rule == TableRule::resets || all[left].rule == TableRule::loosens;
        const bool isDateOfVisit = all[left].name == "history_visits" && left == 0;
        const bool isUnusedIcon =
            all[left].name == "icon_info" && all[left].rule == TableRule::bySite;
        EXPECT_TRUE(isOfRowThatStays || isDateOfVisit || isUnusedIcon || !isAllForgottenBy(others))
            << left << " " << all[left].name;
    }
    EXPECT_TRUE(isAllForgottenBy(all));
}

TEST_P(SafariDatabases, oneSiteIsForgottenInEveryColumnAndTheOtherStaysAsItIs) {
    {
        const Database database = made(file(), {kept});
        tests::plantDeleted(database, planting().ofSite, gone, 1);
        tests::plant(database, planting().ofSite, gone, 1);
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
    }
    EXPECT_EQ(forget(SiteSelection::only({*Site::ofHost(gone)})), ForgetOutcome{});
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(SafariDatabases, eachRowThatNamesASiteInOneColumnIsForgottenByItself) {
    for (const std::string& row : withSecondSite(planting().crossing, kept)) {
        SCOPED_TRACE(row);
        tests::plant(made(file(), {kept, gone}), {row}, gone, 1);
        forget(SiteSelection::only({*Site::ofHost(gone)}));
        EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
        fs::remove(file());
    }
}

TEST_P(SafariDatabases, allButOneSiteIsForgotten) {
    tests::plant(made(file(), {kept, gone}), planting().lost, gone, 1);
    forget(SiteSelection::allBut({*Site::ofHost(kept)}));
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(SafariDatabases, everythingIsForgottenButWhatIsTheBrowsersOwn) {
    {
        const Database database = made(file(), {kept, gone});
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
    }
    forget(SiteSelection::everything());
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
    EXPECT_EQ(filesHolding(file(), kept), Lines{});
    EXPECT_EQ(contentsOf(file()), contentsMade({}));
    EXPECT_EQ(Database(file()).text("PRAGMA foreign_key_check"), "");
}

TEST_P(SafariDatabases, listingChangesNothingAndKnowsTheSites) {
    made(file(), {kept, gone});
    const auto before = home_.snapshot();
    std::set<std::string> names;
    for (const Trace& trace : store(file())->list({}).bySite) {
        names.insert(trace.site.name());
    }
    EXPECT_EQ(names, (std::set<std::string>{gone, kept}));
    EXPECT_TRUE(home_.snapshot() == before);
}

INSTANTIATE_TEST_SUITE_P(OfAllFiles, SafariDatabases, testing::ValuesIn(plantings),
                         [](const auto& each) {
                             return std::to_string(each.index) + nameOf(each);
                         });

class SafariRows : public SafariHome {
protected:
    const fs::path history = library() / "Safari/History.db";
    const fs::path tabs = library() / inContainer / "Safari/SafariTabs.db";
};

TEST_F(SafariRows, aVisitTellsWhenAPageWasUsedLast) {
    tests::plant(tests::makeSafariDatabase(history),
                 {"history_items|id=1|url='https://a.test/'",
                  "history_visits|id=1|history_item=1|visit_time=700000000.5",
                  "history_visits|id=2|history_item=1|visit_time=600000000"},
                 "", 0);
    const TraceListing listing = store(history)->list({});
    ASSERT_EQ(listing.bySite.size(), 1U);
    EXPECT_EQ(listing.bySite[0].lastUsed, dateFromReferenceSeconds(700000000.5));
    EXPECT_EQ(listing.bySite[0].size.itemCount, CleanableDataSize::Measurement(3));
}

TEST_F(SafariRows, aVisitThatCameFromAForgottenSiteStaysWithoutIt) {
    tests::plant(tests::makeSafariDatabase(history),
                 {"history_items|id=1|url='https://gone.test/'",
                  "history_items|id=2|url='https://kept.test/'",
                  "history_visits|id=1|history_item=1|redirect_destination=2",
                  "history_visits|id=2|history_item=2|redirect_source=1|redirect_destination=3",
                  "history_visits|id=3|history_item=2|redirect_source=2",
                  "history_visits|id=4|history_item=2|redirect_destination=1"},
                 "", 0);
    store(history)->forget(tests::only({"gone.test"}));
    EXPECT_EQ(Database(history).text(
                  "SELECT group_concat(id || ' ' || ifnull(redirect_source, '-') || ' ' ||"
                  " ifnull(redirect_destination, '-'), ', ') FROM history_visits"),
              "2 - 3, 3 2 -, 4 - -");
}

TEST_F(SafariRows, aTabOfAnotherSiteLosesOnlyWhereItMayGoBackTo) {
    tests::plant(
        tests::makeSafariDatabase(tabs),
        {"bookmarks|id=1|type=0|url='https://gone.test/'|external_uuid='A'",
         "bookmarks|id=2|type=0|url='https://kept.test/'|external_uuid='B'|title='kept'|"
         "extra_attributes='https://kept.test/'|local_attributes='back to https://gone.test/ "
         "and https://kept.test/'",
         "bookmarks|id=3|type=0|url='https://kept.test/2'|local_attributes='https://kept.test/'",
         "bookmarks|id=9|type=1|title='group'|last_selected_child=1",
         "windows|id=1|uuid='W'|extra_attributes='frame'|restoration_archive='https://gone.test/'",
         "windows|id=2|uuid='X'|restoration_archive='https://kept.test/'",
         "windows_tab_groups|id=1|active_tab_id=1|tab_group_id=9|window_id=1",
         "windows_tab_groups|id=2|active_tab_id=2|tab_group_id=9|window_id=2"},
        "", 0);
    store(tabs)->forget(tests::only({"gone.test"}));
    const Database database(tabs);
    EXPECT_EQ(database.text("SELECT group_concat(id || ' ' || ifnull(title, '-') || ' ' ||"
                            " ifnull(extra_attributes, '-') || ' ' || ifnull(local_attributes, '-')"
                            " || ' ' || ifnull(last_selected_child, '-'), ', ') FROM bookmarks"),
              "2 kept https://kept.test/ - -, 3 - - https://kept.test/ -, 9 group - - -");
    EXPECT_EQ(
        database.text("SELECT group_concat(uuid || ' ' || ifnull(extra_attributes, '-') || ' '"
                      " || ifnull(restoration_archive, '-'), ', ') FROM windows"),
        "W frame -, X - https://kept.test/");
    EXPECT_EQ(database.text("SELECT group_concat(id || ' ' || ifnull(active_tab_id, '-'), ', ')"
                            " FROM windows_tab_groups"),
              "1 -, 2 2");
    EXPECT_EQ(filesHolding(tabs, "gone.test"), Lines{});
}

TEST_F(SafariRows, favouritesOfAGroupOfTabsAreNoTabs) {
    tests::plant(tests::makeSafariDatabase(tabs),
                 {"bookmarks|id=51|type=1|title='group'",
                  "bookmarks|id=52|type=1|subtype=1|parent=51|title='favourites'",
                  "bookmarks|id=53|type=0|parent=52|url='https://gone.test/favourite'|"
                  "local_attributes='https://gone.test/'",
                  "bookmarks|id=54|type=1|parent=52|title='folder'",
                  "bookmarks|id=55|type=0|parent=54|url='https://gone.test/deeper'",
                  "bookmarks|id=56|type=0|parent=51|url='https://gone.test/tab'"},
                 "", 0);
    EXPECT_EQ(tests::inShort(store(tabs)->list({})), Lines{"gone.test openTabs 1"});
    for (const ForgetRequest& request : {tests::only({"gone.test"}), tests::everything()}) {
        store(tabs)->forget(request);
        EXPECT_EQ(Database(tabs).text("SELECT group_concat(id || ' ' ||"
                                      " ifnull(local_attributes, '-'), ', ') FROM bookmarks"),
                  "51 -, 52 -, 53 https://gone.test/, 54 -, 55 -");
    }
}

TEST_F(SafariRows, aValueThatAddsUpToTooMuchIsAnErrorThatSaysSo) {
    const Bytes bytes = tests::manyInEachOther(tests::text("https://gone.test/")).binaryData();
    std::string digits;
    for (const auto byte : bytes) {
        constexpr std::string_view hexadecimal = "0123456789ABCDEF";
        digits += {hexadecimal[byte / 16U], hexadecimal[byte % 16U]};
    }
    tests::makeSafariDatabase(tabs).execute("INSERT INTO session_state(uuid, data) VALUES('S', x'" +
                                            digits + "')");
    try {
        store(tabs)->forget(tests::only({"gone.test"}));
        FAIL();
    } catch (const SQLiteError& error) {
        EXPECT_EQ(error.what(), std::string("property lists within one add up to too much"));
    }
    EXPECT_EQ(Database(tabs).number("SELECT COUNT(*) FROM session_state"), 1);
}

TEST_F(SafariRows, aBookmarkOfAWholeSiteKeepsTheIconOfItsFirstPage) {
    home_.write("Library/Safari/Bookmarks.plist",
                "<plist><dict><key>Children</key><array><dict><key>URLString</key>"
                "<string>https://a.test</string></dict></array></dict></plist>");
    const fs::path icons = library() / "Safari/Favicon Cache/favicons.db";
    tests::plant(
        tests::makeSafariDatabase(icons),
        {"page_url|url='https://a.test/'|uuid='U'", "icon_info|uuid='U'|url='https://a.test/i'",
         "page_url|url='https://a.test/page'|uuid='U'"},
        "", 0);
    store(icons)->forget(tests::everything());
    EXPECT_EQ(Database(icons).text("SELECT group_concat(url) FROM page_url"), "https://a.test/");
    EXPECT_EQ(Database(icons).number("SELECT COUNT(*) FROM icon_info"), 1);
}

TEST_F(SafariRows, aPageThatIsKeptKeepsItsIconOfAnotherSite) {
    const fs::path icons = library() / "Safari/Favicon Cache/favicons.db";
    tests::plant(tests::makeSafariDatabase(icons),
                 {"page_url|url='https://kept.test/'|uuid='U'",
                  "icon_info|uuid='U'|url='https://icons.test/i'",
                  "page_url|url='https://gone.test/'|uuid='U'"},
                 "", 0);
    store(icons)->forget(tests::allBut({"kept.test"}));
    EXPECT_EQ(contentsOf(icons).size(), 2U);
}

TEST_F(SafariRows, anIconThatNoPageHasGoesWithItsSite) {
    const fs::path icons = library() / "Safari/Favicon Cache/favicons.db";
    tests::plant(tests::makeSafariDatabase(icons),
                 {"icon_info|uuid='U'|url='https://gone.test/i'",
                  "icon_info|uuid='V'|url='https://kept.test/i'",
                  "page_url|url='https://kept.test/'|uuid='V'"},
                 "", 0);
    EXPECT_EQ(tests::inShort(store(icons)->list({})),
              (Lines{"gone.test icons 1", "kept.test icons 1"}));
    store(icons)->forget(tests::only({"gone.test"}));
    EXPECT_EQ(contentsOf(icons).size(), 2U);
}

TEST_F(SafariRows, iconsStayWhereTheBookmarksCannotBeRead) {
    const fs::path icons = library() / "Safari/Favicon Cache/favicons.db";
    tests::plant(tests::makeSafariDatabase(icons), {"page_url|url='https://a.test/'|uuid='U'"}, "",
                 0);
    home_.write("Library/Safari/Bookmarks.plist", "{damaged");
    EXPECT_THROW(store(icons)->forget(tests::everything()), DecodingError);
    EXPECT_EQ(Database(icons).number("SELECT COUNT(*) FROM page_url"), 1);
}

TEST_F(SafariRows, whatWasDecidedForASiteGoesOnlyWithSettings) {
    const fs::path file = library() / "Safari/PerSitePreferences.db";
    tests::plant(tests::makeSafariDatabase(file), {"preference_values|id=1|domain='a.test'"}, "",
                 0);
    store(file)->forget(tests::everything());
    EXPECT_EQ(Database(file).number("SELECT COUNT(*) FROM preference_values"), 1);
    ForgetRequest withSettings = tests::everything();
    withSettings.takesSettings = true;
    store(file)->forget(withSettings);
    EXPECT_EQ(Database(file).number("SELECT COUNT(*) FROM preference_values"), 0);
}

}  // namespace
}  // namespace browsersweep
