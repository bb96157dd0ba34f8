#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/DateFilter.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using tests::Database;
using tests::dates;
using tests::GuardedFileManager;
using tests::inside;
using tests::outside;
using tests::TemporaryFolder;
using Filters = std::vector<CleanableDataFilter>;
using Dates = CleanableDataFilter::Dates;
using Patterns = CleanableDataFilter::Patterns;
using Rule = CleanableDataFilter::Rule;

// The tables of Safari's own database, without those that hold no visits.
constexpr const char* schema =
    "CREATE TABLE history_items (id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT NOT NULL UNIQUE,"
    " domain_expansion TEXT NULL, visit_count INTEGER NOT NULL, daily_visit_counts BLOB NOT NULL,"
    " weekly_visit_counts BLOB NULL, autocomplete_triggers BLOB NULL,"
    " should_recompute_derived_visit_counts INTEGER NOT NULL, visit_count_score INTEGER NOT NULL,"
    " status_code INTEGER NOT NULL DEFAULT 0);"
    "CREATE TABLE history_visits (id INTEGER PRIMARY KEY AUTOINCREMENT,"
    " history_item INTEGER NOT NULL REFERENCES history_items(id) ON DELETE CASCADE,"
    " visit_time REAL NOT NULL, title TEXT NULL, load_successful BOOLEAN NOT NULL DEFAULT 1,"
    " http_non_get BOOLEAN NOT NULL DEFAULT 0, synthesized BOOLEAN NOT NULL DEFAULT 0,"
    " redirect_source INTEGER NULL UNIQUE, redirect_destination INTEGER NULL UNIQUE,"
    " origin INTEGER NOT NULL DEFAULT 0, generation INTEGER NOT NULL DEFAULT 0,"
    " attributes INTEGER NOT NULL DEFAULT 0, score INTEGER NOT NULL DEFAULT 0);"
    "CREATE INDEX history_visits__last_visit ON history_visits (history_item, visit_time DESC);";

// Three sites: the first is visited at 100, 200 and 300, the second at 200, the third at 400.
constexpr const char* rowsSQL =
    "INSERT INTO history_items (id, url, visit_count, daily_visit_counts,"
    " should_recompute_derived_visit_counts, visit_count_score) VALUES"
    " (1, 'https://news.example.org/', 3, x'', 0, 100),"
    " (2, 'https://shop.example.net/', 1, x'', 0, 100),"
    " (3, 'https://mail.example.com/', 1, x'', 0, 100);"
    "INSERT INTO history_visits (history_item, visit_time, title) VALUES"
    " (1, 100.0, 'News'), (1, 200.0, 'News'), (1, 300.5, 'News'), (2, 200.25, 'Shop'),"
    " (3, 400.0, NULL);";

const std::string query =
    "FROM history_visits LEFT JOIN history_items\n"
    "        ON history_items.id == history_visits.history_item\n"
    "    ";

std::string countText(const std::string& where) {
    return "SELECT COUNT(*)\nFROM (\n    SELECT history_items.url, history_visits.visit_time\n   "
           " " +
           query + where + "\n);";
}

std::string deleteText(const std::string& where) {
    return "DELETE\nFROM history_visits\nWHERE id IN (\n    SELECT history_visits.id\n    " +
           query + where + "\n);";
}

/** Counts what may only happen where reading in place would write. */
class CopyCountingFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    void copy(const std::filesystem::path& from, const std::filesystem::path& to) const override {
        copied_->push_back(from.filename().string());
        ForwardingFileManager::copy(from, to);
    }
    const std::vector<std::string>& copied() const { return *copied_; }

private:
    std::shared_ptr<std::vector<std::string>> copied_ =
        std::make_shared<std::vector<std::string>>();
};

class SafariHistoryCleanableDatabaseTest : public testing::Test {
protected:
    void fill() const {
        const Database database(file_);
        database.execute(schema);
        database.execute(rowsSQL);
    }
    CleanableDataSize sizeOf(std::int64_t visits) const {
        const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file_));
        return visits == 0 ? CleanableDataSize::zero : CleanableDataSize{visits, {bytes, true}};
    }
    std::int64_t number(const std::string& sql) const { return Database(file_).number(sql); }

    TemporaryFolder folder_;
    std::shared_ptr<CopyCountingFileManager> fileManager_ =
        std::make_shared<CopyCountingFileManager>(GuardedFileManager::forFixture(folder_));
    std::filesystem::path file_ = folder_ / "History.db";
    SafariHistoryCleanableDatabase item_{file_, fileManager_};
};

TEST_F(SafariHistoryCleanableDatabaseTest, isOneTableOfVisits) {
    const SafariHistoryCleanableDatabase history("/History.db", FileManager::defaultManager());
    const auto parts = history.parts();
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts.front().table, "history_visits");
}

TEST_F(SafariHistoryCleanableDatabaseTest, safariMustBeClosed) {
    EXPECT_TRUE(item_.requiresClosedBrowserToClean());
}

TEST_F(SafariHistoryCleanableDatabaseTest, withoutFiltersAllVisitsAreMeant) {
    EXPECT_EQ("SELECT COUNT(*) FROM history_visits;", item_.countStatement({}));
    EXPECT_EQ("DELETE FROM history_visits;", item_.deleteStatement({}));
}

struct StatementCase {
    const char* name;
    Filters filters;
    std::string where;
};

std::vector<StatementCase> statementCases() {
    const CleanableDataFilter both(Patterns{Patterns::Rule::include, {"a"}},
                                   dates(inside, 1, 2).datesData);
    return {
        {"include", {{Rule::include, {"news"}}}, "WHERE (history_items.url LIKE '%news%')"},
        {"two includes",
         {{Rule::include, {"a", "b"}}},
         "WHERE (history_items.url LIKE '%a%' OR history_items.url LIKE '%b%')"},
        {"exclude", {{Rule::exclude, {"news"}}}, "WHERE (history_items.url NOT LIKE '%news%')"},
        {"inside",
         {dates(inside, 700000000, 700000000.5)},
         "WHERE (history_visits.visit_time BETWEEN 700000000.0 AND 700000000.5)"},
        {"outside",
         {dates(outside, -1, 1e16)},
         "WHERE (history_visits.visit_time NOT BETWEEN -1.0 AND 1e+16)"},
        {"from", {dates(inside, 5, {})}, "WHERE (history_visits.visit_time >= 5.0)"},
        {"before", {dates(outside, 5, {})}, "WHERE (history_visits.visit_time < 5.0)"},
        {"until", {dates(inside, {}, 5)}, "WHERE (history_visits.visit_time <= 5.0)"},
        {"after", {dates(outside, {}, 5)}, "WHERE (history_visits.visit_time > 5.0)"},
        {"all groups",
         {both, {Rule::exclude, {"b"}}, dates(inside, {}, 9)},
         "WHERE (history_items.url NOT LIKE '%b%') AND (history_items.url LIKE '%a%') AND "
         "(history_visits.visit_time BETWEEN 1.0 AND 2.0 OR history_visits.visit_time <= 9.0)"},
        {"no bound", {dates(inside, {}, {})}, ""},
        {"no pattern", {{Rule::include, {}}}, ""},
        {"empty filter", {CleanableDataFilter()}, ""},
    };
}

TEST_F(SafariHistoryCleanableDatabaseTest, filtersStandInTheMiddleOfFixedTexts) {
    for (const StatementCase& row : statementCases()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(countText(row.where), item_.countStatement(row.filters));
        EXPECT_EQ(deleteText(row.where), item_.deleteStatement(row.filters));
    }
}

TEST_F(SafariHistoryCleanableDatabaseTest, anEmptyConditionLeavesItsIndentationAlone) {
    const Filters filters{CleanableDataFilter()};
    EXPECT_EQ(
        "SELECT COUNT(*)\n"
        "FROM (\n"
        "    SELECT history_items.url, history_visits.visit_time\n"
        "    FROM history_visits LEFT JOIN history_items\n"
        "        ON history_items.id == history_visits.history_item\n"
        "    \n"
        ");",
        item_.countStatement(filters));
}

TEST_F(SafariHistoryCleanableDatabaseTest, theStatementForAddressesIsAFixedText) {
    EXPECT_EQ(
        "DELETE\n"
        "FROM history_items\n"
        "WHERE id NOT IN (\n"
        "    SELECT history_item FROM history_visits\n"
        ");",
        SafariHistoryCleanableDatabase::addressStatement());
}

struct FigureCase {
    const char* name;
    Filters filters;
    const char* selected;  ///< an independent query for the visits' numbers
};

std::vector<FigureCase> figureCases() {
    return {
        {"all", {}, "1"},
        {"nothing said", {CleanableDataFilter()}, "1"},
        {"one site", {{Rule::include, {"news"}}}, "history_item = 1"},
        {"letter case", {{Rule::include, {"NEWS"}}}, "history_item = 1"},
        {"other sites", {{Rule::exclude, {"news"}}}, "history_item <> 1"},
        {"bounds count", {dates(inside, 200, 300.5)}, "visit_time IN (200.0, 200.25, 300.5)"},
        {"outside", {dates(outside, 200, 300.5)}, "visit_time IN (100.0, 400.0)"},
        {"site and time",
         {{Patterns{Patterns::Rule::include, {"news"}}, dates(inside, {}, 200).datesData}},
         "history_item = 1 AND visit_time IN (100.0, 200.0)"},
        {"no match", {{Rule::include, {"nowhere"}}}, "0"},
    };
}

TEST_F(SafariHistoryCleanableDatabaseTest, visitsAreCountedAndDeletedAsSelected) {
    for (const FigureCase& row : figureCases()) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(file_);
        fill();
        const std::int64_t selected =
            number("SELECT COUNT(*) FROM history_visits WHERE " + std::string(row.selected));
        EXPECT_EQ(sizeOf(selected), item_.size(row.filters));

        item_.clean(row.filters);

        EXPECT_EQ(5 - selected, number("SELECT COUNT(*) FROM history_visits"));
        EXPECT_EQ(0,
                  number("SELECT COUNT(*) FROM history_visits WHERE " + std::string(row.selected)));
        EXPECT_EQ(CleanableDataSize::zero, item_.size(row.filters));
    }
}

TEST_F(SafariHistoryCleanableDatabaseTest, afterCleaningNoAddressIsWithoutVisits) {
    fill();
    const Filters filters{{Rule::include, {"news"}}};
    item_.clean(filters);
    EXPECT_EQ(2, number("SELECT COUNT(*) FROM history_items"));
    EXPECT_EQ(0, number("SELECT COUNT(*) FROM history_items WHERE id NOT IN"
                        " (SELECT history_item FROM history_visits)"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, addressesThatNeverHadVisitsGoToo) {
    fill();
    Database(file_).execute("DELETE FROM history_visits WHERE history_item = 2");
    const Filters nothing{{Rule::include, {"nowhere"}}};
    item_.clean(nothing);
    EXPECT_EQ(2, number("SELECT COUNT(*) FROM history_items"));
    EXPECT_EQ(4, number("SELECT COUNT(*) FROM history_visits"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, aVisitOfNoAddressIsSelectedByTimeAlone) {
    fill();
    Database(file_).execute("INSERT INTO history_visits (history_item, visit_time) VALUES (9, 1)");
    const Filters byTime{dates(Dates::Rule::insideRange, {}, 1)};
    const Filters byAddress{{Rule::exclude, {"nowhere"}}};
    EXPECT_EQ(1, item_.size(byTime).itemCount.value);
    EXPECT_EQ(5, item_.size(byAddress).itemCount.value);
}

TEST_F(SafariHistoryCleanableDatabaseTest, aMissingFileIsEmptyAndIsNotCreated) {
    const Filters filters{{Rule::include, {"news"}}};
    EXPECT_EQ(CleanableDataSize::zero, item_.size());
    EXPECT_EQ(CleanableDataSize::zero, item_.size(filters));
    item_.clean();
    item_.clean(filters);
    EXPECT_EQ(std::vector<std::string>{}, folder_.snapshot());
}

TEST_F(SafariHistoryCleanableDatabaseTest, aDirectoryIsEmpty) {
    folder_.makeFolder("History.db");
    const std::vector<std::string> before = folder_.snapshot();
    EXPECT_EQ(CleanableDataSize::zero, item_.size());
    item_.clean();
    EXPECT_EQ(before, folder_.snapshot());
}

TEST_F(SafariHistoryCleanableDatabaseTest, withoutOneOfTheTablesItIsEmptyAndStaysAsItIs) {
    for (const char* table : {"history_items", "history_visits"}) {
        SCOPED_TRACE(table);
        std::filesystem::remove(file_);
        fill();
        Database(file_).execute("PRAGMA foreign_keys = OFF; DROP TABLE " + std::string(table));
        const std::vector<std::string> before = folder_.snapshot();
        EXPECT_EQ(CleanableDataSize::zero, item_.size());
        item_.clean();
        EXPECT_EQ(before, folder_.snapshot());
    }
}

TEST_F(SafariHistoryCleanableDatabaseTest, aFileThatIsNoDatabaseIsAnError) {
    folder_.write("History.db", std::string(4096, 'x'));
    EXPECT_THROW(item_.size(), SQLiteError);
    EXPECT_THROW(item_.clean(), SQLiteError);
    const CleanableDataSize unknown{{0, true}, {0, true}};
    EXPECT_EQ(unknown, item_.sizeIgnoringErrors());
}

TEST_F(SafariHistoryCleanableDatabaseTest, aStatementThatFailsIsAnErrorAndSkipsTheAddresses) {
    const Database database(file_);
    database.execute(
        "CREATE TABLE history_items (id INTEGER, url TEXT);"
        "CREATE TABLE history_visits (id INTEGER, visit_time REAL);"
        "INSERT INTO history_items VALUES (1, 'a')");
    const Filters filters{{Rule::include, {"a"}}};
    EXPECT_THROW(item_.size(filters), SQLiteError);
    EXPECT_THROW(item_.clean(filters), SQLiteError);
    EXPECT_EQ(1, number("SELECT COUNT(*) FROM history_items"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, whenTheAddressesFailTheVisitsStayDeleted) {
    const Database database(file_);
    database.execute(
        "CREATE TABLE history_items (url TEXT);"
        "CREATE TABLE history_visits (id INTEGER, history_item INTEGER, visit_time REAL);"
        "INSERT INTO history_items VALUES ('a');"
        "INSERT INTO history_visits VALUES (1, 1, 1.0)");
    EXPECT_THROW(item_.clean(), SQLiteError);
    EXPECT_EQ(0, number("SELECT COUNT(*) FROM history_visits"));
    EXPECT_EQ(1, number("SELECT COUNT(*) FROM history_items"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, whileAnotherWritesTheDeletionIsSilentlyNotDone) {
    fill();
    const Database other(file_);
    other.execute("BEGIN IMMEDIATE");
    EXPECT_EQ(5, item_.size().itemCount.value);
    item_.clean();
    other.execute("COMMIT");
    EXPECT_EQ(5, number("SELECT COUNT(*) FROM history_visits"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, aDatabaseThatCannotEvenBeReadIsAnError) {
    fill();
    const Database other(file_);
    other.execute("BEGIN EXCLUSIVE");
    EXPECT_THROW(item_.size(), SQLiteError);
    EXPECT_THROW(item_.clean(), SQLiteError);
    other.execute("COMMIT");
    EXPECT_EQ(5, number("SELECT COUNT(*) FROM history_visits"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, sizingReadsTheFileItself) {
    fill();
    const std::vector<std::string> before = folder_.snapshot();
    EXPECT_EQ(sizeOf(5), item_.size());
    EXPECT_EQ(before, folder_.snapshot());
    EXPECT_EQ(std::vector<std::string>{}, fileManager_->copied());
}

TEST_F(SafariHistoryCleanableDatabaseTest, sizingLeavesADatabaseInLogModeAsItIs) {
    fill();
    EXPECT_EQ("wal", Database(file_).text("PRAGMA journal_mode = WAL"));
    folder_.makeFolder("tmp");
    const std::vector<std::string> before = folder_.snapshot();
    EXPECT_EQ(sizeOf(5), item_.size());
    EXPECT_EQ(before, folder_.snapshot());
    EXPECT_EQ(std::vector<std::string>{"History.db"}, fileManager_->copied());
}

TEST_F(SafariHistoryCleanableDatabaseTest, visitsInALogLeftByACrashAreCountedAndTheLogStays) {
    const std::filesystem::path original = folder_ / "original/History.db";
    const Database database(original);
    database.text("PRAGMA journal_mode = WAL");
    database.execute(schema);
    database.execute(rowsSQL);
    // Copied while it is open, as a crash leaves it: all rows are in the log.
    std::filesystem::copy_file(original, file_);
    std::filesystem::copy_file(original.string() + "-wal", file_.string() + "-wal");
    folder_.makeFolder("tmp");
    const std::vector<std::string> before = folder_.snapshot();

    EXPECT_EQ(sizeOf(5), item_.size());
    EXPECT_EQ(before, folder_.snapshot());
    EXPECT_EQ((std::vector<std::string>{"History.db", "History.db-wal"}), fileManager_->copied());

    item_.clean();
    EXPECT_EQ(CleanableDataSize::zero, item_.size());
    EXPECT_EQ(0, number("SELECT COUNT(*) FROM history_items"));
}

TEST_F(SafariHistoryCleanableDatabaseTest, aJournalLeftByACrashIsPlayedBackOnACopyOnly) {
    const std::filesystem::path original = folder_ / "original/History.db";
    const Database database(original);
    database.execute(schema);
    database.execute(rowsSQL);
    // A small cache makes SQLite write to the file before the transaction ends.
    database.execute(
        "PRAGMA cache_size = 1; BEGIN; DELETE FROM history_visits;"
        "UPDATE history_items SET url = url || hex(zeroblob(20000))");
    std::filesystem::copy_file(original, file_);
    std::filesystem::copy_file(original.string() + "-journal", file_.string() + "-journal");
    folder_.makeFolder("tmp");
    const std::vector<std::string> before = folder_.snapshot();

    EXPECT_EQ(5, item_.size().itemCount.value);
    EXPECT_EQ(before, folder_.snapshot());
}

}  // namespace
}  // namespace browsersweep
