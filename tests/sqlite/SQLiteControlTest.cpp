#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/Database.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PageDamage.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::Database;

/** A control that stops when it has been asked so often. */
std::shared_ptr<OperationControl> stoppingAfter(int questions) {
    auto left = std::make_shared<int>(questions);
    return std::make_shared<OperationControl>(
        [left](const OperationProgress&) { return --*left < 0; });
}

class ControlledFileManager : public tests::ForwardingFileManager {
public:
    ControlledFileManager(std::shared_ptr<const FileManager> target,
                          std::shared_ptr<OperationControl> control)
        : ForwardingFileManager(std::move(target)), control_(std::move(control)) {}
    std::shared_ptr<OperationControl> control() const noexcept override { return control_; }

private:
    std::shared_ptr<OperationControl> control_;
};

constexpr std::int64_t rowCount = 20000;

class SQLiteControl : public testing::Test {
protected:
    SQLiteControl() {
        Database(file_).execute(
            "PRAGMA page_size = 1024; BEGIN;"
            "CREATE TABLE history_items (id INTEGER PRIMARY KEY, url TEXT);"
            "CREATE TABLE history_visits (id INTEGER PRIMARY KEY, history_item INTEGER,"
            " visit_time REAL);"
            "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000)"
            " INSERT INTO history_items SELECT i, 'https://host' || i || '.example/' FROM n;"
            "INSERT INTO history_visits SELECT id, id, id FROM history_items; COMMIT;");
    }

    std::shared_ptr<const FileManager> managerWith(
        const std::shared_ptr<OperationControl>& control) const {
        return std::make_shared<ControlledFileManager>(manager_, control);
    }
    CleanableSQLiteDatabase table(const std::shared_ptr<OperationControl>& control) const {
        return {file_,
                {SQLiteStatementComponents::withPatternColumn("history_items", "url", {})},
                managerWith(control)};
    }
    SafariHistoryCleanableDatabase safari(const std::shared_ptr<OperationControl>& control) const {
        return {file_, managerWith(control)};
    }
    std::int64_t rows(const std::string& name) const {
        return Database(file_).number("SELECT COUNT(*) FROM " + name);
    }

    /**
     * Makes the items' tree one of which every page has hundreds of children, all of them the same
     * page, over more levels than could ever be walked.
     */
    void makeBomb() const {
        constexpr std::size_t levels = 15;
        Database(file_).execute("CREATE TABLE room (x); INSERT INTO room VALUES (zeroblob(30000))");
        const auto root = static_cast<std::size_t>(Database(file_).number(
            "SELECT rootpage FROM sqlite_master WHERE name = 'history_items'"));
        std::string bytes = tests::readFile(file_);
        const std::size_t size = tests::pageSizeOf(bytes);
        const std::size_t last = bytes.size() / size;
        const std::size_t leaf = last - levels;
        for (std::size_t level = 0; level < levels; ++level) {
            const std::size_t page = level == 0 ? root : last - level + 1;
            const std::size_t child = level + 1 == levels ? leaf : last - level;
            bytes.replace((page - 1) * size, size, interiorPage(size, child));
        }
        bytes.replace((leaf - 1) * size, size, leafPage(size));
        std::ofstream(file_, std::ios::binary) << bytes;
    }

    tests::TemporaryFolder home_{tests::folderInMemory()};
    fs::path file_ = home_.makeFolder("data") / "History.db";
    std::shared_ptr<const FileManager> manager_ = tests::GuardedFileManager::forFixture(home_);

private:
    static std::string number(std::size_t value, int bytes) {
        std::string text;
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
            text.push_back(static_cast<char>((value >> static_cast<unsigned>(shift)) & 0xff));
        }
        return text;
    }

    static std::string interiorPage(std::size_t size, std::size_t child) {
        constexpr std::size_t cells = 160;
        const std::size_t cell = size - 5;
        std::string page = number(5, 1) + number(0, 2) + number(cells, 2) + number(cell, 2) +
                           number(0, 1) + number(child, 4);
        for (std::size_t index = 0; index < cells; ++index) {
            page += number(cell, 2);
        }
        page.resize(cell);
        return page + number(child, 4) + number(1, 1);
    }

    static std::string leafPage(std::size_t size) {
        std::string page = number(13, 1) + number(0, 2) + number(1, 2) + number(size - 6, 2) +
                           number(0, 1) + number(size - 6, 2);
        page.resize(size - 6);
        // One row: its length, its number, and a header for a NULL and an empty text.
        return page + number(3, 1) + number(1, 1) + number(3, 1) + number(0, 1) + number(13, 1) +
               number(0, 1);
    }
};

TEST_F(SQLiteControl, isToldOfTheRowsThatWereCounted) {
    const auto control = std::make_shared<OperationControl>();
    EXPECT_EQ(table(control).size().itemCount.value, rowCount);
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, static_cast<std::uint64_t>(rowCount)}));
    EXPECT_EQ(safari(control).size().itemCount.value, rowCount);
    EXPECT_EQ(control->progress(),
              (OperationProgress{0, 0, static_cast<std::uint64_t>(2 * rowCount)}));
}

TEST_F(SQLiteControl, isToldOfNoRowsWhereTheTablesAreMissing) {
    Database(file_).execute("DROP TABLE history_items");
    const auto control = std::make_shared<OperationControl>();
    EXPECT_EQ(safari(control).size(), CleanableDataSize::zero);
    EXPECT_EQ(table(control).size(), CleanableDataSize::zero);
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 0U}));
}

TEST_F(SQLiteControl, isToldOfTheRowsThatWereDeleted) {
    const auto control = std::make_shared<OperationControl>();
    const std::vector<CleanableDataFilter> some{{CleanableDataFilter::Rule::include, {"host1."}}};
    table(control).clean(some);
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 1U}));
    table(control).clean(some);
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 1U}));
    safari(control).clean();
    EXPECT_EQ(control->progress(),
              (OperationProgress{0, 0, static_cast<std::uint64_t>(2 * rowCount)}));
}

TEST_F(SQLiteControl, isToldOfNoRowsWhereTheDatabaseIsBeingWritten) {
    const auto control = std::make_shared<OperationControl>();
    const Database browser(file_);
    browser.execute("BEGIN IMMEDIATE");
    table(control).clean();
    safari(control).clean();
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 0U}));
}

TEST_F(SQLiteControl, endsAStatementInItsMiddleWhichIsTakenBack) {
    const std::vector<CleanableDataFilter> most{{CleanableDataFilter::Rule::exclude, {"none"}}};
    for (const int questions : {3, 10, 30}) {
        SCOPED_TRACE(questions);
        EXPECT_THROW(table(stoppingAfter(questions)).clean(most), OperationCancelled);
        EXPECT_THROW(safari(stoppingAfter(questions)).clean(most), OperationCancelled);
        EXPECT_THROW(table(stoppingAfter(questions)).size(most), OperationCancelled);
        EXPECT_THROW(safari(stoppingAfter(questions)).size(most), OperationCancelled);
        EXPECT_EQ(rows("history_items"), rowCount);
        EXPECT_EQ(rows("history_visits"), rowCount);
        EXPECT_FALSE(fs::exists(fs::path(file_) += "-journal"));
        EXPECT_TRUE(fs::is_empty(manager_->temporaryDirectory()));
    }
}

TEST_F(SQLiteControl, endsADeletionOfAllRowsWhileItReads) {
    // Such a deletion is one instruction: it is asked where pages are read.
    EXPECT_THROW(table(stoppingAfter(40)).clean(), OperationCancelled);
    EXPECT_EQ(rows("history_items"), rowCount);
    EXPECT_EQ(Database(file_).text("PRAGMA integrity_check"), "ok");
}

TEST_F(SQLiteControl, keepsWhatWasDeletedBeforeTheStop) {
    const std::vector<CleanableDataFilter> one{{CleanableDataFilter::Rule::include, {"host7."}}};
    const auto control = std::make_shared<OperationControl>(
        [](const OperationProgress& done) { return done.rows > 0; });
    try {
        safari(control).clean(one);
        ADD_FAILURE() << "not stopped";
    } catch (const OperationCancelled& cancelled) {
        EXPECT_EQ(cancelled.progress().rows, 1U);
    }
    EXPECT_EQ(rows("history_visits"), rowCount - 1);
    EXPECT_EQ(rows("history_items"), rowCount);
}

TEST_F(SQLiteControl, endsAnEndlessStatement) {
    const SQLiteConnection connection(file_, stoppingAfter(100));
    EXPECT_THROW(connection.evaluate("WITH RECURSIVE r(x) AS (SELECT 1 UNION ALL SELECT x FROM r)"
                                     " SELECT COUNT(*) FROM r;",
                                     CountEvaluator{}),
                 OperationCancelled);
}

TEST_F(SQLiteControl, endsAStatementOverADatabaseThatIsReadAsItLies) {
    const auto connection = SQLiteConnection::readingAsItLies(file_, stoppingAfter(1));
    EXPECT_THROW(connection.evaluate("SELECT COUNT(*) FROM history_visits", CountEvaluator{}),
                 OperationCancelled);
}

TEST_F(SQLiteControl, endsTheCountingOfATreeThatNeverEnds) {
    makeBomb();
    EXPECT_THROW(table(stoppingAfter(3000)).size(), OperationCancelled);
    EXPECT_THROW(
        table(stoppingAfter(3000))
            .size(std::vector<CleanableDataFilter>{{CleanableDataFilter::Rule::include, {"x"}}}),
        OperationCancelled);
}

TEST_F(SQLiteControl, aTreeThatNeverEndsIsNotDeletedForEver) {
    makeBomb();
    const std::vector<CleanableDataFilter> none{{CleanableDataFilter::Rule::include, {"x"}}};
    EXPECT_THROW(table(stoppingAfter(3000)).clean(none), OperationCancelled);
    const auto control = stoppingAfter(3000);
    try {
        table(control).clean();
    } catch (const OperationCancelled&) {
        EXPECT_TRUE(control->shouldStop());
    }
    EXPECT_EQ(control->progress(), (OperationProgress{0, 0, 0U}));
}

TEST_F(SQLiteControl, countsAsSQLiteDoes) {
    const SQLiteConnection connection(file_, std::make_shared<OperationControl>());
    EXPECT_EQ(connection.evaluate("SELECT COUNT(*) FROM history_items;", CountEvaluator{}),
              rowCount);
    EXPECT_EQ(
        connection.evaluate("SELECT COUNT(*) FROM history_items WHERE id < 0;", CountEvaluator{}),
        0);
    EXPECT_EQ(connection.evaluate("SELECT COUNT(NULL) FROM history_items;", CountEvaluator{}), 0);
}

}  // namespace
}  // namespace browsersweep
