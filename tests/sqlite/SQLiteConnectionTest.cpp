#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/sqlite/SQLiteConnection.h"

#include "tests/support/Database.h"
#include "tests/support/PageDamage.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** The SQLite error that an operation throws. */
template <typename Operation>
SQLiteError errorOf(Operation operation) {
    try {
        operation();
    } catch (const SQLiteError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return SQLiteError(std::nullopt);
}

template <typename Operation>
std::optional<std::string> messageOf(Operation operation) {
    return errorOf(operation).errorDescription();
}

using Pair = std::pair<std::optional<std::string>, std::string>;

std::optional<Pair> nameAndAddress(const SQLiteStatement& row) {
    const auto address = row.text(1);
    return address ? std::optional<Pair>({row.text(0), *address}) : std::nullopt;
}

class SQLiteConnectionTest : public testing::Test {
protected:
    void SetUp() override {
        const tests::Database database(file);
        database.execute(
            "CREATE TABLE marks (name TEXT, address TEXT);"
            "INSERT INTO marks VALUES ('a', 'x'), (NULL, 'y'), ('c', NULL);"
            "CREATE VIEW looks AS SELECT name FROM marks;");
    }

    tests::TemporaryFolder folder;
    fs::path file = folder / "data.sqlite";
};

TEST_F(SQLiteConnectionTest, openingAMissingFileCreatesAnEmptyDatabase) {
    const SQLiteConnection connection(folder / "new.sqlite");
    EXPECT_TRUE(fs::exists(folder / "new.sqlite"));
    EXPECT_FALSE(connection.hasTable("marks"));
}

TEST_F(SQLiteConnectionTest, openingWhereNothingCanBeIsAnErrorWithTheTextOfAClosedHandle) {
    const auto error = errorOf([&] { SQLiteConnection(folder / "missing/data.sqlite"); });
    EXPECT_EQ(error.errorDescription(), "bad parameter or other API misuse");
    EXPECT_EQ(error.resultCode(), SQLITE_CANTOPEN);
    EXPECT_EQ(error.kind(), SQLiteError::Kind::cannotOpen);
}

TEST_F(SQLiteConnectionTest, errorsCarryTheCodeOfTheCallThatFailed) {
    const SQLiteConnection connection(file);
    EXPECT_EQ(errorOf([&] { connection.evaluate("SELEC 1;", CountEvaluator{}); }).kind(),
              SQLiteError::Kind::statement);
    EXPECT_EQ(errorOf([&] {
                  connection.evaluate("SELECT abs(-9223372036854775808);", CountEvaluator{});
              }).resultCode(),
              SQLITE_ERROR);
    const tests::Database browser(file);
    browser.execute("BEGIN EXCLUSIVE;");
    EXPECT_EQ(errorOf([&] { SQLiteConnection(file).hasTable("marks"); }).kind(),
              SQLiteError::Kind::locked);
    const SQLiteConnection text(folder.write("text", "this is no database, not at all"));
    EXPECT_EQ(errorOf([&] { text.hasTable("marks"); }).kind(), SQLiteError::Kind::damaged);
}

TEST(SQLiteErrorKind, isToldByThePrimaryCode) {
    EXPECT_EQ(SQLiteError::kindOf(SQLITE_IOERR_READ), SQLiteError::Kind::inputOutput);
    EXPECT_EQ(SQLiteError::kindOf(SQLITE_LOCKED), SQLiteError::Kind::locked);
    EXPECT_EQ(SQLiteError::kindOf(SQLITE_READONLY_ROLLBACK), SQLiteError::Kind::denied);
    EXPECT_EQ(SQLiteError::kindOf(SQLITE_FULL), SQLiteError::Kind::full);
    EXPECT_EQ(SQLiteError::kindOf(SQLITE_NOMEM), SQLiteError::Kind::other);
    EXPECT_EQ(SQLiteError("unknown").kind(), SQLiteError::Kind::other);
}

TEST_F(SQLiteConnectionTest, aDatabaseIsClosedWithItsLastConnection) {
    auto first = std::make_optional<SQLiteConnection>(file);
    const SQLiteConnection second = *first;
    first.reset();
    EXPECT_TRUE(second.hasTable("marks"));
}

TEST_F(SQLiteConnectionTest, tableExistenceIsFalseForAMissingTableAndForAView) {
    const SQLiteConnection connection(file);
    EXPECT_TRUE(connection.hasTable("marks"));
    EXPECT_FALSE(connection.hasTable("nothing"));
    EXPECT_FALSE(connection.hasTable("looks"));
}

TEST_F(SQLiteConnectionTest, tableExistenceStatementIsPlainText) {
    EXPECT_EQ(tableExistenceSQL("urls"),
              "SELECT COUNT(*)\nFROM sqlite_master\nWHERE type = 'table' AND name = 'urls';");
}

TEST_F(SQLiteConnectionTest, countIsTheFirstColumnOfTheFirstRow) {
    const SQLiteConnection connection(file);
    EXPECT_EQ(connection.evaluate("SELECT COUNT(*) FROM marks;", CountEvaluator{}), 3);
}

TEST_F(SQLiteConnectionTest, aCountWithoutARowIsZero) {
    const SQLiteConnection connection(file);
    EXPECT_EQ(connection.evaluate("SELECT 7 WHERE 0;", CountEvaluator{}), 0);
    EXPECT_EQ(connection.evaluate("SELECT 7 WHERE 0;", TableExistenceEvaluator{}), false);
}

TEST_F(SQLiteConnectionTest, existenceIsACountOfExactlyOne) {
    const SQLiteConnection connection(file);
    EXPECT_TRUE(connection.evaluate("SELECT 1;", TableExistenceEvaluator{}));
    EXPECT_FALSE(connection.evaluate("SELECT 2;", TableExistenceEvaluator{}));
}

/** Counts how often it is called. */
void countCall(sqlite3_context* context, int /*count*/, sqlite3_value** /*values*/) {
    ++*static_cast<int*>(sqlite3_user_data(context));
    sqlite3_result_int(context, 1);
}

/** Ends the statement with a code, as SQLite's own calls end it. */
void failWithCode(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    sqlite3_result_error_code(context, sqlite3_value_int(*values));
}

TEST_F(SQLiteConnectionTest, executeRunsAStatementToItsEnd) {
    const SQLiteConnection connection(file);
    int calls = 0;
    sqlite3_create_function(connection.dbPointer(), "called", 0, SQLITE_UTF8, &calls, countCall,
                            nullptr, nullptr);
    connection.evaluate("SELECT called() FROM marks;", ExecuteEvaluator{});
    EXPECT_EQ(calls, 3);  // once for each row: whoever stops at the first one calls it once
}

TEST_F(SQLiteConnectionTest, executeRunsAStatementOnce) {
    const SQLiteConnection connection(file);
    connection.evaluate("INSERT INTO marks VALUES ('d', 'z');", ExecuteEvaluator{});
    EXPECT_EQ(connection.changedRowCount(), 1);
    EXPECT_EQ(connection.evaluate("SELECT COUNT(*) FROM marks;", CountEvaluator{}), 4);
}

/** Leaves a statement as it is. */
struct NoEvaluator {
    using EvaluationResult = int;
    int evaluate(const SQLiteStatement& statement) const noexcept { return statement.resultCode(); }
};

TEST_F(SQLiteConnectionTest, aStatementThatIsNotRunHasNoCodeAndChangesNoneOfTheConnection) {
    const SQLiteConnection connection(file);
    EXPECT_EQ(connection.evaluate("SELECT 1;", NoEvaluator{}), SQLITE_OK);
    EXPECT_EQ(connection.silentResultCode(), SQLITE_OK);
    sqlite3_create_function(connection.dbPointer(), "fail", 1, SQLITE_UTF8, nullptr, failWithCode,
                            nullptr, nullptr);
    connection.evaluate("SELECT fail(11);", CountEvaluator{});
    connection.evaluate("SELECT 1;", NoEvaluator{});
    EXPECT_EQ(connection.silentResultCode(), SQLITE_CORRUPT);
}

TEST_F(SQLiteConnectionTest, theNumbersOfARowAreKnownByTheirColumns) {
    struct SecondColumn {
        using EvaluationResult = std::int32_t;
        std::int32_t evaluate(SQLiteStatement& statement) const {
            EXPECT_EQ(statement.step(), SQLiteStatement::Step::row);
            return statement.integer(1);
        }
    };
    EXPECT_EQ(SQLiteConnection(file).evaluate("SELECT 3, 7;", SecondColumn{}), 7);
}

TEST_F(SQLiteConnectionTest, nothingIsPreparedForAControlThatWantsToStop) {
    bool stops = false;
    const SQLiteConnection connection(
        file, std::make_shared<OperationControl>([&](const OperationProgress&) { return stops; }));
    EXPECT_EQ(connection.evaluate("SELECT 5;", CountEvaluator{}), 5);
    stops = true;
    EXPECT_THROW(connection.evaluate("SELECT 5;", CountEvaluator{}), OperationCancelled);
}

TEST_F(SQLiteConnectionTest, anOpeningThatFailsOrIsStoppedGivesItsMemoryBack) {
    const sqlite3_int64 before = sqlite3_memory_used();
    EXPECT_THROW(SQLiteConnection(folder / "missing/data.sqlite"), SQLiteError);
    EXPECT_EQ(sqlite3_memory_used(), before);
    const auto stopping =
        std::make_shared<OperationControl>([](const OperationProgress&) { return true; });
    EXPECT_THROW(SQLiteConnection(file, stopping), OperationCancelled);
    EXPECT_EQ(sqlite3_memory_used(), before);
}

TEST_F(SQLiteConnectionTest, aConstraintThatRefusesIsNoRowAndNoError) {
    tests::Database(file).execute(
        "CREATE TABLE child (name REFERENCES marks (name), x UNIQUE);"
        "INSERT INTO child VALUES (1, 1);");
    const SQLiteConnection connection(file);
    const std::string violating = "INSERT INTO child VALUES (2, 1) RETURNING 1;";
    EXPECT_EQ(connection.evaluate(violating, CountEvaluator{}), 0);
    EXPECT_FALSE(connection.evaluate(violating, TableExistenceEvaluator{}));
    EXPECT_NO_THROW(connection.evaluate(violating, ExecuteEvaluator{}));
    EXPECT_EQ(connection.silentResultCode(), SQLITE_CONSTRAINT);
    EXPECT_EQ(connection.changedRowCount(), 0);
}

TEST_F(SQLiteConnectionTest, aDatabaseThatMayNotGrowIsNoRowAndNoError) {
    const SQLiteConnection connection(file);
    connection.evaluate("PRAGMA max_page_count = 1;", ExecuteEvaluator{});
    const std::string growing = "INSERT INTO marks VALUES (hex(zeroblob(100000)), 1) RETURNING 1;";
    EXPECT_EQ(connection.evaluate(growing, CountEvaluator{}), 0);
    EXPECT_FALSE(connection.evaluate(growing, TableExistenceEvaluator{}));
    EXPECT_NO_THROW(connection.evaluate(growing, ExecuteEvaluator{}));
    EXPECT_EQ(connection.silentResultCode(), SQLITE_FULL);
}

TEST_F(SQLiteConnectionTest, aDamagedPageIsNoRowAndNoError) {
    std::string bytes = tests::readFile(file);
    const std::size_t page = tests::pageSizeOf(bytes);
    bytes.replace(page, page, std::string(page, '\xff'));
    folder.write("data.sqlite", bytes);
    const SQLiteConnection connection(file);
    const std::string reading = "SELECT COUNT(*) FROM marks;";
    EXPECT_EQ(connection.evaluate(reading, CountEvaluator{}), 0);
    EXPECT_FALSE(connection.evaluate(reading, TableExistenceEvaluator{}));
    EXPECT_NO_THROW(connection.evaluate("DELETE FROM marks;", ExecuteEvaluator{}));
    EXPECT_EQ(connection.silentResultCode(), SQLITE_CORRUPT);
}

TEST_F(SQLiteConnectionTest, whatTheSystemCannotReadIsNoRowAndNoError) {
    const SQLiteConnection connection(file);
    ASSERT_TRUE(connection.hasTable("marks"));
    // What may not be opened beside the database fails the statement that needs it.
    fs::create_directory(fs::path(file) += "-journal");
    EXPECT_NO_THROW(connection.evaluate("DELETE FROM marks;", ExecuteEvaluator{}));
    EXPECT_EQ(SQLiteError::kindOf(connection.silentResultCode()), SQLiteError::Kind::cannotOpen);
    fs::remove(fs::path(file) += "-journal");
    EXPECT_EQ(tests::Database(file).number("SELECT COUNT(*) FROM marks"), 3);
}

TEST_F(SQLiteConnectionTest, ofAllCodesThatAreNoRowErrorAloneIsAFailure) {
    const SQLiteConnection connection(file);
    sqlite3_create_function(connection.dbPointer(), "fail", 1, SQLITE_UTF8, nullptr, failWithCode,
                            nullptr, nullptr);
    for (const int code : {SQLITE_IOERR, SQLITE_IOERR_READ, SQLITE_BUSY, SQLITE_LOCKED, SQLITE_FULL,
                           SQLITE_CORRUPT, SQLITE_CONSTRAINT, SQLITE_READONLY}) {
        SCOPED_TRACE(code);
        const std::string failing = "SELECT fail(" + std::to_string(code) + ");";
        EXPECT_FALSE(connection.evaluate(failing, TableExistenceEvaluator{}));
        EXPECT_EQ(connection.evaluate(failing, CountEvaluator{}), 0);
        EXPECT_NO_THROW(connection.evaluate(failing, ExecuteEvaluator{}));
        EXPECT_EQ(connection.silentResultCode() & 0xff, code & 0xff);
        const auto rows =
            connection.evaluate("SELECT name, CASE rowid WHEN 2 THEN fail(" + std::to_string(code) +
                                    ") ELSE 'x' END FROM marks;",
                                TextRowsEvaluator<Pair>(nameAndAddress));
        EXPECT_EQ(rows, (std::vector<Pair>{{"a", "x"}}));
    }
    EXPECT_THROW(connection.evaluate("SELECT fail(1);", CountEvaluator{}), SQLiteError);
}

TEST_F(SQLiteConnectionTest, textRowsAreConvertedInTheirOrderAndMayBeSkipped) {
    const SQLiteConnection connection(file);
    const auto rows = connection.evaluate("SELECT name, address FROM marks ORDER BY rowid;",
                                          TextRowsEvaluator<Pair>(nameAndAddress));
    EXPECT_EQ(rows, (std::vector<Pair>{{"a", "x"}, {std::nullopt, "y"}}));
}

TEST_F(SQLiteConnectionTest, whatAConversionThrowsPassesUnchanged) {
    const SQLiteConnection connection(file);
    const TextRowsEvaluator<int> failing(
        [](const SQLiteStatement&) -> std::optional<int> { throw std::out_of_range("own"); });
    EXPECT_THROW(connection.evaluate("SELECT 1;", failing), std::out_of_range);
    EXPECT_TRUE(connection.hasTable("marks"));
}

TEST_F(SQLiteConnectionTest, anErrorWhileSteppingEndsTheTextRows) {
    const SQLiteConnection connection(file);
    const auto rows = connection.evaluate(
        "SELECT name, CASE rowid WHEN 2 THEN abs(-9223372036854775808) ELSE 'x' END FROM marks;",
        TextRowsEvaluator<Pair>(nameAndAddress));
    EXPECT_EQ(rows, (std::vector<Pair>{{"a", "x"}}));
}

TEST_F(SQLiteConnectionTest, aStatementThatDoesNotParseFailsWithSQLitesMessage) {
    const SQLiteConnection connection(file);
    EXPECT_EQ(messageOf([&] { connection.evaluate("SELEC 1;", CountEvaluator{}); }),
              "near \"SELEC\": syntax error");
    EXPECT_EQ(messageOf([&] { connection.evaluate("SELECT * FROM gone;", CountEvaluator{}); }),
              "no such table: gone");
}

TEST_F(SQLiteConnectionTest, aFirstStepThatFailsIsAnErrorWithSQLitesMessage) {
    const SQLiteConnection connection(file);
    const std::string overflow = "SELECT abs(-9223372036854775808);";
    EXPECT_EQ(messageOf([&] { connection.evaluate(overflow, CountEvaluator{}); }),
              "integer overflow");
    EXPECT_EQ(messageOf([&] { connection.evaluate(overflow, TableExistenceEvaluator{}); }),
              "integer overflow");
    EXPECT_EQ(messageOf([&] { connection.evaluate(overflow, ExecuteEvaluator{}); }),
              "integer overflow");
}

TEST_F(SQLiteConnectionTest, aLaterStepThatFailsPassesSilently) {
    const SQLiteConnection connection(file);
    EXPECT_NO_THROW(connection.evaluate(
        "SELECT CASE rowid WHEN 2 THEN abs(-9223372036854775808) ELSE 1 END FROM marks;",
        ExecuteEvaluator{}));
    EXPECT_EQ(connection.silentResultCode(), SQLITE_OK);
}

TEST_F(SQLiteConnectionTest, aDatabaseLockedByAnotherGivesNoRowsAndDeletesNothing) {
    const tests::Database browser(file);
    browser.execute("BEGIN EXCLUSIVE;");
    const SQLiteConnection connection(file);
    // Preparing must read the schema, which an exclusive lock forbids: that is an error.
    EXPECT_EQ(messageOf([&] { connection.hasTable("marks"); }), "database is locked");
    browser.execute("COMMIT; BEGIN IMMEDIATE;");
    // A writer that lets others read lets them prepare too, and is met at the step.
    connection.evaluate("DELETE FROM marks;", ExecuteEvaluator{});
    browser.execute("COMMIT;");
    EXPECT_EQ(browser.number("SELECT COUNT(*) FROM marks"), 3);
}

TEST_F(SQLiteConnectionTest, noStatementChangesTheSchemaByHand) {
    const SQLiteConnection connection(file);
    connection.evaluate("PRAGMA writable_schema = ON;", ExecuteEvaluator{});
    EXPECT_EQ(
        messageOf([&] { connection.evaluate("DELETE FROM sqlite_master;", ExecuteEvaluator{}); }),
        "table sqlite_master may not be modified");
}

TEST_F(SQLiteConnectionTest, aFileThatIsNoDatabaseFailsAtTheFirstStatement) {
    const SQLiteConnection connection(folder.write("text", "this is no database, not at all"));
    EXPECT_EQ(messageOf([&] { connection.hasTable("marks"); }), "file is not a database");
}

TEST_F(SQLiteConnectionTest, anErrorWithoutAMessageHasNoDescription) {
    const SQLiteError error(std::nullopt);
    EXPECT_EQ(error.errorDescription(), std::nullopt);
    EXPECT_STREQ(error.what(), "");
}

TEST(SQLiteConnection, theNamesOfDatabasesWithoutAFileMakeNone) {
    const tests::TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    for (const char* name : {"", ":memory:"}) {
        const SQLiteConnection database(name);
        EXPECT_EQ(database.evaluate("CREATE TABLE t AS SELECT 1 AS x;", CountEvaluator{}), 0);
        EXPECT_EQ(database.evaluate("SELECT COUNT(*) FROM t;", CountEvaluator{}), 1);
        EXPECT_TRUE(fs::is_empty(folder.path())) << name;
    }
    fs::current_path(before);
}

}  // namespace
}  // namespace browsersweep
