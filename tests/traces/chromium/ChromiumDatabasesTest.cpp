#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"

#include "tests/support/ChromiumSchemas.h"
#include "tests/support/Database.h"
#include "tests/support/DatabaseContents.h"
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

// clang-format off
const std::vector<Planting> plantings{
    {"History",
     {"meta|key='version'|value='70'", "history_sync_metadata|storage_key=7"},
     {"urls|id={n}|url='https://www.{s}/page'|title='title {s}'|last_visit_time=13300000000000000",
      "visits|id={n}|url={n}|visit_time=13300000000000000",
      "visit_source|id={n}|source=1",
      "content_annotations|visit_id={n}|alternative_title='annotated {s}'",
      "context_annotations|visit_id={n}",
      "keyword_search_terms|keyword_id=2|url_id={n}|term='words on {s}'|normalized_term='words'",
      "segments|id={n}|name='https://{s}/'|url_id={n}",
      "segment_usage|id={n}|segment_id={n}",
      "visited_links|id={n}|link_url_id={n}|top_level_url='https://{s}/'|frame_url='https://{s}/'",
      "clusters|cluster_id={n}|label='cluster {s}'",
      "clusters_and_visits|cluster_id={n}|visit_id={n}|url_for_deduping='https://{s}/'|normalized_url='https://{s}/'",
      "cluster_keywords|cluster_id={n}|keyword='keyword {s}'",
      "cluster_visit_duplicates|visit_id={n}|duplicate_visit_id={n}",
      "downloads|id={n}|tab_url='https://{s}/'|site_url='https://{s}/'|referrer='https://{s}/'|tab_referrer_url='https://{s}/'|target_path='/downloads/{s}'|start_time=13300000000000000",
      "downloads_url_chains|id={n}|chain_index=0|url='https://cdn.{s}/file'",
      "downloads_slices|download_id={n}|offset={n}"},
     {"segments|id=21|name='https://{s}/'|url_id=2",
      "segment_usage|id=21|segment_id=21",
      "visited_links|id=21|link_url_id=2|top_level_url='https://{s}/'|frame_url='https://{t}/'",
      "visited_links|id=22|link_url_id=2|top_level_url='https://{t}/'|frame_url='https://{s}/'",
      "visited_links|id=23|link_url_id=1|top_level_url='https://{t}/'|frame_url='https://{t}/'",
      "clusters_and_visits|cluster_id=21|visit_id=2|url_for_deduping='https://{s}/'|normalized_url='https://{t}/'",
      "clusters_and_visits|cluster_id=22|visit_id=2|url_for_deduping='https://{t}/'|normalized_url='https://{s}/'",
      "cluster_visit_duplicates|visit_id=1|duplicate_visit_id=2",
      "cluster_visit_duplicates|visit_id=2|duplicate_visit_id=1",
      "clusters|cluster_id=21", "cluster_keywords|cluster_id=21",
      "downloads|id=21|tab_url='https://{s}/'|site_url='https://{t}/'|referrer='https://{t}/'|tab_referrer_url='https://{t}/'",
      "downloads|id=22|tab_url='https://{t}/'|site_url='https://{s}/'|referrer='https://{t}/'|tab_referrer_url='https://{t}/'",
      "downloads|id=23|tab_url='https://{t}/'|site_url='https://{t}/'|referrer='https://{s}/'|tab_referrer_url='https://{t}/'",
      "downloads|id=24|tab_url='https://{t}/'|site_url='https://{t}/'|referrer='https://{t}/'|tab_referrer_url='https://{s}/'",
      "downloads|id=25|tab_url='https://{t}/'|site_url='https://{t}/'|referrer='https://{t}/'|tab_referrer_url='https://{t}/';;"
      "downloads_url_chains|id=25|chain_index=0|url='https://{t}/';;"
      "downloads_url_chains|id=25|chain_index=1|url='https://{s}/'"},
     {"visits|id=91|url=91|visit_time=1", "visit_source|id=92|source=1", "content_annotations|visit_id=92",
      "context_annotations|visit_id=92", "keyword_search_terms|keyword_id=2|url_id=91|term='lost'|normalized_term='lost'",
      "segments|id=91|name=''|url_id=91", "segment_usage|id=91|segment_id=92", "visited_links|id=91|link_url_id=91|top_level_url=''|frame_url=''",
      "clusters_and_visits|cluster_id=91|visit_id=91|url_for_deduping=''|normalized_url=''", "clusters|cluster_id=92", "cluster_keywords|cluster_id=93",
      "journey_history_entries|journey_id='lost'|visit_timestamp_micros=1", "journey_continuation_queries|id=1|journey_id='lost'",
      "downloads_url_chains|id=91|chain_index=0|url=''", "downloads_slices|download_id=91|offset=0"},
     {"journeys|journey_id='j'|title='of any site'", "journey_history_entries|journey_id='j'|visit_timestamp_micros=2", "journey_continuation_queries|id=2|journey_id='j'"}},
    {"Favicons",
     {"meta|key='version'|value='8'",
      "icon_mapping|id=50|page_url='https://www.bookmarked.test/page'|icon_id=50",
      "favicons|id=50|url='https://www.bookmarked.test/icon'", "favicon_bitmaps|id=50|icon_id=50"},
     {"icon_mapping|id={n}|page_url='https://www.{s}/page'|icon_id={n}",
      "favicons|id={n}|url='https://www.{s}/icon'", "favicon_bitmaps|id={n}|icon_id={n}|image_data='bitmap {s}'"},
     {"icon_mapping|id=21|page_url='https://{s}/'|icon_id=2",
      "icon_mapping|id=22|page_url='https://{t}/'|icon_id=22", "favicons|id=22|url='https://{s}/other'",
      "favicons|id=23|url='https://{s}/unmapped'"},
     {"icon_mapping|id=91|page_url=''|icon_id=91", "favicons|id=92|url=''", "favicon_bitmaps|id=93|icon_id=93"},
     {}, {"favicons|id=23|url='https://{s}/unmapped'"}},
    {"Network Action Predictor",
     {"resource_prefetch_predictor_metadata|key='version'|value=10"},
     {"network_action_predictor|id='{n}'|user_text='{s}'|url='https://{s}/'",
      "resource_prefetch_predictor_url|key='https://{s}/'|proto={m}",
      "resource_prefetch_predictor_url_redirect|key='https://{s}/'|proto={m}",
      "resource_prefetch_predictor_host|key='{s}'|proto={m}",
      "resource_prefetch_predictor_host_redirect|key='{s}'|proto={m}",
      "resource_prefetch_predictor_manifest|key='{s}'|proto={m}",
      "resource_prefetch_predictor_origin|key='{s}'|proto={m}",
      "lcp_critical_path_predictor|key='{s}'|proto={m}",
      "lcp_critical_path_predictor_initiator_origin|key='https://{s}'|proto={m}"},
     {"resource_prefetch_predictor_url|key='https://{t}/x'|proto={m}", "resource_prefetch_predictor_url|key='https://x.{s}/'",
      "resource_prefetch_predictor_url_redirect|key='https://{t}/x'|proto={m}", "resource_prefetch_predictor_url_redirect|key='https://x.{s}/'",
      "resource_prefetch_predictor_host|key='x.{t}'|proto={m}", "resource_prefetch_predictor_host|key='x.{s}'",
      "resource_prefetch_predictor_host_redirect|key='x.{t}'|proto={m}", "resource_prefetch_predictor_host_redirect|key='x.{s}'",
      "resource_prefetch_predictor_manifest|key='x.{t}'|proto={m}", "resource_prefetch_predictor_manifest|key='x.{s}'",
      "resource_prefetch_predictor_origin|key='x.{t}'|proto={m}", "resource_prefetch_predictor_origin|key='x.{s}'",
      "lcp_critical_path_predictor|key='x.{t}'|proto={m}", "lcp_critical_path_predictor|key='x.{s}'",
      "lcp_critical_path_predictor_initiator_origin|key='https://x.{t}'|proto={m}", "lcp_critical_path_predictor_initiator_origin|key='https://x.{s}'"},
     {}},
    {"Top Sites", {"meta|key='version'|value='5'"},
     {"top_sites|url='https://www.{s}/'|title='title {s}'", "thumbnails|url='https://www.{s}/'|title='title {s}'"}, {}, {}},
    {"Shortcuts", {"meta|key='version'|value='2'"},
     {"omni_box_shortcuts|id='{n}'|text='{s}'|url='https://www.{s}/'|contents='title {s}'|last_access_time=13300000000000000"}, {}, {}},
    {"Cookies", {"meta|key='version'|value='24'"},
     {"cookies|host_key='.{s}'|name='name'|value='value {s}'|last_access_utc=13300000000000000"},
     {"cookies|host_key='.{t}'|top_frame_site_key='https://{s}'|name='framed'", "cookies|host_key='x.{s}'|top_frame_site_key='https://{t}'|name='framed'"}, {}},
    {"Web Data", {"meta|key='version'|value='140'", "keywords|id=1|short_name='engine'", "addresses|guid='1'", "credit_cards|guid='1'"}, {}, {}, {},
     {"autofill|name='f'|value='typed'", "autocomplete|name='f'|value='typed'|label=''"}},
    {"DIPS", {"meta|key='version'|value='8'", "config|key='prepopulated'|int_value=1"},
     {"bounces|site='{s}'|last_user_activation_time=13300000000000000", "popups|opener_site='{s}'|popup_site='{s}'"},
     {"popups|opener_site='{s}'|popup_site='{t}'", "popups|opener_site='{t}'|popup_site='{s}'"}, {}},
    {"Reporting and NEL", {"meta|key='version'|value='3'"},
     {"nel_policies|origin_host='www.{s}'|nik='https://{s} https://{s}'",
      "reporting_endpoints|origin_host='www.{s}'|nik='https://{s} https://{s}'|url='https://report.{s}/'",
      "reporting_endpoint_groups|origin_host='www.{s}'|nik='https://{s} https://{s}'"},
     {"nel_policies|origin_host='x.{s}'|nik='https://{t} https://{t}'", "nel_policies|origin_host='x.{t}'|nik='https://{s} https://{t}'",
      "reporting_endpoints|origin_host='x.{s}'|nik='https://{t}'|url='https://{t}/'", "reporting_endpoints|origin_host='x.{t}'|nik='https://{s}'|url='https://{t}/'",
      "reporting_endpoints|origin_host='x.{t}'|nik='https://{t}'|url='https://{s}/'",
      "reporting_endpoint_groups|origin_host='x.{s}'|nik='https://{t}'", "reporting_endpoint_groups|origin_host='x.{t}'|nik='https://{s}'"}, {}},
    {"Trust Tokens", {"meta|key='version'|value='1'"},
     {"trust_tokens_issuer_config|key='https://{s}'|proto={m}", "trust_tokens_toplevel_config|key='https://{s}'|proto={m}",
      "trust_tokens_issuer_toplevel_pair_config|key='https://{s} https://{s}'|proto={m}"},
     {"trust_tokens_issuer_config|key='https://x.{s}'", "trust_tokens_issuer_config|key='https://x.{t}'|proto={m}",
      "trust_tokens_toplevel_config|key='https://x.{s}'", "trust_tokens_toplevel_config|key='https://x.{t}'|proto={m}",
      "trust_tokens_issuer_toplevel_pair_config|key='https://{s} https://{t}'", "trust_tokens_issuer_toplevel_pair_config|key='https://x.{t}'|proto={m}"}, {}},
    {"heavy_ad_intervention_opt_out.db", {"enabled_previews_v1|type=1|version=1"}, {"previews_v1|host_name='{s}'|time=13300000000000000"}, {}, {}},
    {"declarative_performance_observer.db", {},
     {"declarative_performance_observer_policies|origin='https://{s}'", "declarative_performance_observer_reports|id={n}|origin='https://{s}'|payload='of {s}'"}, {}, {}},
    {"WebStorage/QuotaManager",
     {"meta|key='version'|value='10'", "buckets|id=50|storage_key='chrome-extension://abcdefghijklmnop/'|host='abcdefghijklmnop'|name='x'",
      "eviction_info|origin='chrome-extension://abcdefghijklmnop/'"},
     {"buckets|id={n}|storage_key='https://www.{s}/'|host='www.{s}'|name='_default'|last_accessed=13300000000000000",
      "quota|host='www.{s}'", "eviction_info|origin='https://www.{s}/'"},
     {"buckets|id=21|storage_key='https://{s}/^0https://{t}'|host='{s}'|name='_default'", "buckets|id=22|storage_key='https://{t}/^0https://{s}'|host='{t}'|name='_default'"}, {}},
    {"Shared Dictionary/db", {"meta|key='version'|value='1'"},
     {"dictionaries|primary_key={n}|frame_origin='https://{s}'|top_frame_site='https://{s}'|host='https://{s}'|match='/*'|url='https://{s}/dictionary'|last_used_time=13300000000000000"},
     {"dictionaries|primary_key=21|frame_origin='https://{s}'|top_frame_site='https://{t}'|host='https://{t}'|url='https://{t}/'",
      "dictionaries|primary_key=22|frame_origin='https://{t}'|top_frame_site='https://{s}'|host='https://{t}'|url='https://{t}/'",
      "dictionaries|primary_key=23|frame_origin='https://{t}'|top_frame_site='https://{t}'|host='https://{s}'|url='https://{t}/'",
      "dictionaries|primary_key=24|frame_origin='https://{t}'|top_frame_site='https://{t}'|host='https://{t}'|url='https://{s}/'"}, {}},
    {"segmentation_platform/ukm_db", {"uma_metrics|id=1|metric_hash='kept'"},
     {"urls|url_id={n}|url='https://www.{s}/'|title='title {s}'|last_timestamp=13300000000000000", "metrics|id={n}|url_id={n}|event_hash='event {s}'"},
     {}, {"metrics|id=91|url_id=91"}},
};
// clang-format on

class ChromiumDatabases : public testing::TestWithParam<Planting> {
protected:
    static constexpr const char* gone = "gonehost.test";
    static constexpr const char* kept = "kepthost.test";

    ChromiumDatabases() {
        home_.makeFolder("tmp");
        home_.write("profile/Bookmarks",
                    R"({"roots": {"bookmark_bar": {"type": "folder", "children": [
                        {"type": "url", "name": "b", "url": "https://www.bookmarked.test/page"}]}}})");
    }

    const Planting& planting() const { return GetParam(); }

    /** The database in a folder of this name, with what stays and what a site left. */
    Database made(const std::string& folder, const std::vector<std::string>& sites) const {
        Database database = tests::makeChromiumDatabase(home_ / folder, planting().file);
        tests::plant(database, planting().ofBrowser, "bookmarked.test", 50);
        for (const std::string& site : sites) {
            tests::plant(database, planting().ofSite, site, site == gone ? 1 : 2);
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

    std::shared_ptr<const TraceStore> store() const {
        for (const TraceStores& stores : {databaseStores(home_ / "profile", manager_),
                                          sharedDatabaseStores(home_ / "profile", manager_)}) {
            for (const auto& each : stores) {
                if (each->path() == file()) {
                    return each;
                }
            }
        }
        return nullptr;
    }

    std::span<const TraceTable> rules() const {
        for (const auto& databases : {chromiumDatabases(), sharedChromiumDatabases()}) {
            for (const ChromiumDatabase& database : databases) {
                if (database.file == planting().file) {
                    return database.tables;
                }
            }
        }
        return {};
    }

    /** Whether a site goes by these rules as it should: with all its rows, and with each. */
    bool isAllForgottenBy(std::span<const TraceTable> tried) const {
        const auto only = SiteSelection::only({*Site::ofHost(gone)});
        const PlantedRows& own = planting().ofSite;
        const PlantedRows first(own.begin(), own.begin() + (own.empty() ? 0 : 1));
        std::vector<PlantedRows> trials{own, planting().alone, withFirst(first, planting().lost)};
        for (const std::string& row : withSecondSite(planting().crossing, kept)) {
            trials.push_back(withFirst(first, {row}));
        }
        return isForgottenBy(tried, planting().mixed, SiteSelection::everything(), {}) &&
               std::all_of(trials.begin(), trials.end(), [&](const PlantedRows& rows) {
                   return isForgottenBy(tried, rows, only, {kept});
               });
    }

    static PlantedRows withFirst(PlantedRows first, const PlantedRows& others) {
        first.insert(first.end(), others.begin(), others.end());
        return first;
    }

    bool isForgottenBy(std::span<const TraceTable> tried, const PlantedRows& rows,
                       const SiteSelection& selection,
                       const std::vector<std::string>& sitesThatStay) const {
        tests::plant(made("profile", {kept}), rows, gone, 1);
        const auto marks = [] { return ProtectedAddresses{"https://www.bookmarked.test/page"}; };
        DatabaseTraceStore({file(), tried, marks}, manager_).forget(request(selection));
        const bool isForgotten = contentsOf(file()) == contentsMade(sitesThatStay);
        fs::remove(file());
        return isForgotten;
    }

    ForgetRequest request(const SiteSelection& selection) const {
        return {selection, {}, false, false, {}};
    }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_P(ChromiumDatabases, oneSiteIsForgottenInEveryColumnAndTheOtherStaysAsItIs) {
    {
        const Database database = made("profile", {kept});
        tests::plantDeleted(database, planting().ofSite, gone, 1);
        tests::plant(database, planting().ofSite, gone, 1);
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
    }
    EXPECT_EQ(store()->forget(request(SiteSelection::only({*Site::ofHost(gone)}))),
              ForgetOutcome{});
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(ChromiumDatabases, eachRowThatNamesASiteInOneColumnIsForgottenByItself) {
    for (const std::string& row : withSecondSite(planting().crossing, kept)) {
        SCOPED_TRACE(row);
        {
            const Database database = made("profile", {kept, gone});
            tests::plant(database, {row}, gone, 1);
        }
        store()->forget(request(SiteSelection::only({*Site::ofHost(gone)})));
        EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
        fs::remove_all(file().parent_path());
    }
}

TEST_P(ChromiumDatabases, allButOneSiteIsForgotten) {
    {
        const Database database = made("profile", {kept, gone});
        tests::plant(database, planting().lost, gone, 1);
    }
    store()->forget(request(SiteSelection::allBut({*Site::ofHost(kept)})));
    EXPECT_EQ(contentsOf(file()), contentsMade({kept}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
}

TEST_P(ChromiumDatabases, everythingIsForgottenButWhatTheBrowserNeeds) {
    {
        const Database database = made("profile", {kept, gone});
        tests::plant(database, withSecondSite(planting().crossing, kept), gone, 1);
        tests::plant(database, planting().lost, gone, 1);
        tests::plant(database, planting().mixed, gone, 1);
    }
    store()->forget(request(SiteSelection::everything()));
    EXPECT_EQ(contentsOf(file()), contentsMade({}));
    EXPECT_EQ(filesHolding(file(), gone), Lines{});
    EXPECT_EQ(filesHolding(file(), kept), Lines{});
}

TEST_P(ChromiumDatabases, listingChangesNothingAndKnowsTheSites) {
    made("profile", {kept, gone});
    const auto before = home_.snapshot();
    std::set<std::string> names;
    for (const Trace& trace : store()->list({}).bySite) {
        names.insert(trace.site.name());
    }
    EXPECT_EQ(names, planting().ofSite.empty() ? std::set<std::string>{}
                                               : (std::set<std::string>{gone, kept}));
    const auto after = home_.snapshot();
    Lines changed;
    std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                  std::back_inserter(changed));
    for (std::string& each : changed) {
        each.resize(std::min(each.size(), std::size_t{60}));
    }
    EXPECT_EQ(changed, Lines{});
}

TEST_P(ChromiumDatabases, everyRuleIsNeeded) {
    const std::span<const TraceTable> all = rules();
    for (std::size_t left = 0; left < all.size(); ++left) {
        std::vector<TraceTable> others(all.begin(), all.end());
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(left));
        const bool isTriedElsewhere = all[left].rule == TableRule::resets;
        EXPECT_TRUE(isTriedElsewhere || !isAllForgottenBy(others)) << left << " " << all[left].name;
    }
    EXPECT_TRUE(isAllForgottenBy(all));
}

TEST_P(ChromiumDatabases, everyTableOfTheRulesIsPlanted) {
    tests::plant(made("profile", {kept}), planting().mixed, kept, 2);
    for (const TraceTable& table : rules()) {
        EXPECT_GT(Database(file()).number("SELECT COUNT(*) FROM " + std::string(table.name)), 0)
            << table.name;
    }
}

class ChromiumHistory : public testing::Test {
protected:
    ChromiumHistory() { home_.makeFolder("tmp"); }

    TemporaryFolder home_{tests::folderInMemory()};
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);
};

TEST_F(ChromiumHistory, aVisitOfAnotherSiteForgetsFromWhereItCame) {
    tests::plant(tests::makeChromiumDatabase(home_.path(), "History"),
                 {"urls|id=1|url='https://kept.test/'",
                  "visits|id=1|url=1|visit_time=5|external_referrer_url='https://gone.test/'",
                  "visits|id=2|url=1|visit_time=6|external_referrer_url='https://kept.test/x'"},
                 "", 0);
    const TraceStores stores = databaseStores(home_.path(), manager_);
    stores.front()->forget(
        {SiteSelection::only({*Site::ofHost("gone.test")}), {}, false, false, {}});
    const Database database(home_ / "History");
    EXPECT_EQ(database.text("SELECT group_concat(id || external_referrer_url) FROM visits"),
              "1,2https://kept.test/x");
    EXPECT_EQ(filesHolding(home_ / "History", "gone.test"), Lines{});
}

TEST_F(ChromiumHistory, aSegmentOfAKeptSiteStaysWhereItsPageHasGoneBefore) {
    tests::plant(tests::makeChromiumDatabase(home_.path(), "History"),
                 {"segments|id=1|name='http://kept.test/'|url_id=7",
                  "segments|id=2|name='http://gone.test/'|url_id=8", "segments|id=3|url_id=9",
                  "segment_usage|id=1|segment_id=1", "segment_usage|id=2|segment_id=2"},
                 "", 0);
    const TraceStores stores = databaseStores(home_.path(), manager_);
    stores.front()->forget(
        {SiteSelection::allBut({*Site::ofHost("kept.test")}), {}, false, false, {}});
    const Database database(home_ / "History");
    EXPECT_EQ(database.text("SELECT group_concat(name) FROM segments"), "http://kept.test/");
    EXPECT_EQ(database.text("SELECT group_concat(id) FROM segment_usage"), "1");
}

TEST_F(ChromiumHistory, iconsOfBookmarksThatCannotBeReadStay) {
    tests::plant(tests::makeChromiumDatabase(home_.path(), "Favicons"),
                 {"icon_mapping|id=1|page_url='https://a.test/'|icon_id=1"}, "", 0);
    home_.write("Bookmarks", "damaged");
    for (const auto& store : databaseStores(home_.path(), manager_)) {
        if (store->path() == home_ / "Favicons") {
            EXPECT_ANY_THROW(store->forget({SiteSelection::everything(), {}, false, false, {}}));
        }
    }
    EXPECT_EQ(Database(home_ / "Favicons").number("SELECT COUNT(*) FROM icon_mapping"), 1);
}

INSTANTIATE_TEST_SUITE_P(OfAllFiles, ChromiumDatabases, testing::ValuesIn(plantings),
                         tests::nameOf);

}  // namespace
}  // namespace browsersweep
