#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "browsersweep/platform/ForwardingFileManager.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SQLiteError.h"

#include "tests/support/Database.h"
#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Components = SQLiteStatementComponents;
using Filters = std::vector<CleanableDataFilter>;
using Rule = CleanableDataFilter::Rule;

class CleanableSQLiteDatabaseTest : public testing::Test {
protected:
    void SetUp() override {
        tests::Database(file).execute(
            "CREATE TABLE urls (url TEXT, time INTEGER);"
            "INSERT INTO urls VALUES ('http://a.test/1', 10), ('http://a.test/2', 20),"
            " ('http://b.test/', 30);"
            "CREATE TABLE downloads (name TEXT); INSERT INTO downloads VALUES ('x'), ('y');"
            "CREATE TABLE other (name TEXT); INSERT INTO other VALUES ('kept');");
        fs::create_directories(folder / "tmp");
    }

    Components urls() const { return Components::withPatternColumn("urls", "url", {}); }
    Components downloads() const { return {"downloads", std::nullopt, {}}; }
    Components missing() const { return {"missing", std::nullopt, {}}; }

    CleanableSQLiteDatabase item(std::vector<Components> tables) const {
        return {file, std::move(tables), fileManager};
    }

    CleanableDataSize rows(std::int64_t count) const {
        return {count, {static_cast<std::int64_t>(fs::file_size(file)), true}};
    }

    std::int64_t countIn(const std::string& table) const {
        return tests::Database(file).number("SELECT COUNT(*) FROM " + table);
    }

    tests::TemporaryFolder folder;
    fs::path file = folder / "History";
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(folder);
};

const Filters hostA{{Rule::include, {"a.test"}}};

TEST_F(CleanableSQLiteDatabaseTest, sizeIsTheRowsAndTheWholeFile) {
    EXPECT_EQ(item({urls(), downloads()}).size(), rows(5));
    EXPECT_EQ(item({urls(), urls()}).size(), rows(6));
}

TEST_F(CleanableSQLiteDatabaseTest, oneMatchingRowGivesTheWholeFilesSizeApproximately) {
    EXPECT_EQ(item({urls()}).size(Filters{{Rule::include, {"b.test"}}}), rows(1));
}

/** Tells other attributes than the file's own, or fails to. */
class AttributesFileManager : public tests::ForwardingFileManager {
public:
    AttributesFileManager(std::shared_ptr<const FileManager> target,
                          std::optional<FileAttributes> told)
        : ForwardingFileManager(std::move(target)), told_(told) {}
    FileAttributes attributes(const fs::path& path) const override {
        if (!told_) {
            throw fs::filesystem_error("cannot", path, std::make_error_code(std::errc::io_error));
        }
        return *told_;
    }

private:
    std::optional<FileAttributes> told_;
};

TEST_F(CleanableSQLiteDatabaseTest, attributesThatCannotBeReadAreAnErrorAlsoForNoRow) {
    const auto failing = std::make_shared<AttributesFileManager>(fileManager, std::nullopt);
    const CleanableSQLiteDatabase database(file, {urls()}, failing);
    EXPECT_THROW(database.size(), fs::filesystem_error);
    EXPECT_THROW(database.size(Filters{{Rule::include, {"c.test"}}}), fs::filesystem_error);
}

TEST_F(CleanableSQLiteDatabaseTest, aMissingSizeIsZeroAndApproximate) {
    const auto untold = std::make_shared<AttributesFileManager>(fileManager, FileAttributes{});
    EXPECT_EQ(CleanableSQLiteDatabase(file, {urls()}, untold).size(),
              (CleanableDataSize{3, {0, true}}));
}

TEST_F(CleanableSQLiteDatabaseTest, aSizeOf63BitsIsTheLargestThatThereIs) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    FileAttributes enormous{static_cast<std::uint64_t>(largest)};
    const auto told = std::make_shared<AttributesFileManager>(fileManager, enormous);
    EXPECT_EQ(CleanableSQLiteDatabase(file, {urls()}, told).size(),
              (CleanableDataSize{3, {largest, true}}));
    enormous.size = *enormous.size + 1;
    const auto more = std::make_shared<AttributesFileManager>(fileManager, enormous);
    const CleanableSQLiteDatabase database(file, {urls()}, more);
    EXPECT_DEATH(database.size(), "63 bits");
    EXPECT_EQ(database.size(Filters{{Rule::include, {"c.test"}}}), CleanableDataSize::zero);
}

TEST_F(CleanableSQLiteDatabaseTest, aCountThatFailsIsAnErrorAndLeavesNoCopy) {
    const Components broken("downloads", std::nullopt, {"no_such_column = 1"});
    EXPECT_THROW(item({urls(), broken}).size(), SQLiteError);
    EXPECT_TRUE(fs::is_empty(folder / "tmp"));
}

TEST_F(CleanableSQLiteDatabaseTest, noMatchingRowIsExactlyNothing) {
    EXPECT_EQ(item({urls()}).size(Filters{{Rule::include, {"c.test"}}}), CleanableDataSize::zero);
}

TEST_F(CleanableSQLiteDatabaseTest, tablesThatAreAllMissingAreExactlyNothing) {
    EXPECT_EQ(item({missing()}).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item({missing()}).clean());
}

/** Copies no file. */
class WithoutCopies : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    void copy(const fs::path& from, const fs::path& /*to*/) const override {
        throw fs::filesystem_error("refused", from, std::make_error_code(std::errc::io_error));
    }
};

TEST_F(CleanableSQLiteDatabaseTest, withoutTablesNothingIsOpened) {
    folder.write("History", "no database");
    EXPECT_EQ(item({}).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item({}).clean());
    const auto withoutCopies = std::make_shared<WithoutCopies>(fileManager);
    EXPECT_EQ(CleanableSQLiteDatabase(file, {}, withoutCopies).size(), CleanableDataSize::zero);
}

TEST_F(CleanableSQLiteDatabaseTest, aSizeWithoutRowsHasNoBytes) {
    for (const std::int64_t count : {0, -1}) {
        EXPECT_EQ(databaseSize(count, file, *fileManager), (CleanableDataSize{count, 0}));
    }
}

TEST_F(CleanableSQLiteDatabaseTest, aMissingFileOrADirectoryIsNothingAndIsNotCreated) {
    fs::remove(file);
    EXPECT_EQ(item({urls()}).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item({urls()}).clean());
    EXPECT_FALSE(fs::exists(file));
    fs::create_directory(file);
    EXPECT_EQ(item({urls()}).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item({urls()}).clean());
    EXPECT_TRUE(fs::is_empty(file));
}

TEST_F(CleanableSQLiteDatabaseTest, sizingWritesNothingAndLeavesNoCopy) {
    const auto before = folder.snapshot();
    item({urls(), missing(), downloads()}).size(hostA);
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(CleanableSQLiteDatabaseTest, cleanDeletesTheSelectedRowsOfItsTablesAlone) {
    item({urls(), missing(), downloads()}).clean(hostA);
    EXPECT_EQ(countIn("urls"), 1);
    EXPECT_EQ(countIn("downloads"), 0);  // without columns, filters do nothing to it
    EXPECT_EQ(countIn("other"), 1);
}

TEST_F(CleanableSQLiteDatabaseTest, cleanKeepsTheFilesSize) {
    const auto before = fs::file_size(file);
    item({urls()}).clean();
    EXPECT_EQ(fs::file_size(file), before);
    EXPECT_EQ(item({urls()}).size(), CleanableDataSize::zero);
}

TEST_F(CleanableSQLiteDatabaseTest, datesThatCannotBeEncodedDeleteEveryRow) {
    Components visits = urls();
    visits.columnsForFiltering->byDate = {
        "time", [](const Date&) -> std::string { throw std::range_error("cannot"); }};
    const CleanableDataFilter::Dates range{CleanableDataFilter::Dates::Rule::insideRange,
                                           dateFromReferenceSeconds(1),
                                           dateFromReferenceSeconds(2)};
    item({visits}).clean(Filters{{std::nullopt, range}});
    EXPECT_EQ(countIn("urls"), 0);
}

TEST_F(CleanableSQLiteDatabaseTest, cleaningAFileThatIsGoneByThenSucceeds) {
    const auto made = item({urls()});
    fs::remove(file);
    EXPECT_NO_THROW(made.clean());
}

TEST_F(CleanableSQLiteDatabaseTest, theFirstErrorEndsACleanAndWhatWasDoneStays) {
    const Components broken("downloads", std::nullopt, {"no such syntax ("});
    EXPECT_THROW(item({urls(), broken, {"other", std::nullopt, {}}}).clean(), SQLiteError);
    EXPECT_EQ(countIn("urls"), 0);
    EXPECT_EQ(countIn("downloads"), 2);
    EXPECT_EQ(countIn("other"), 1);
}

TEST_F(CleanableSQLiteDatabaseTest, aFileThatIsNoDatabaseIsAnErrorAndStaysAsItIs) {
    folder.write("History", "this is not a database, whatever its name says");
    const auto before = folder.snapshot();
    EXPECT_THROW(item({urls()}).size(), SQLiteError);
    EXPECT_THROW(item({urls()}).clean(), SQLiteError);
    EXPECT_EQ(item({urls()}).sizeIgnoringErrors(), (CleanableDataSize{{0, true}, {0, true}}));
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(CleanableSQLiteDatabaseTest, anEmptyFileIsADatabaseWithoutTables) {
    folder.write("History", "");
    EXPECT_EQ(item({urls()}).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(item({urls()}).clean());
    EXPECT_EQ(tests::readFile(file), "");
}

TEST_F(CleanableSQLiteDatabaseTest, aDatabaseThatIsBeingWrittenIsSizedFromItsCopyAndNotCleaned) {
    const tests::Database browser(file);
    browser.execute("BEGIN IMMEDIATE;");
    EXPECT_EQ(item({urls()}).size(), rows(3));
    EXPECT_NO_THROW(item({urls()}).clean());
    browser.execute("COMMIT;");
    EXPECT_EQ(countIn("urls"), 3);
}

TEST_F(CleanableSQLiteDatabaseTest,
       aDatabaseLockedAgainstReadersIsSizedFromItsCopyAndFailsToClean) {
    const tests::Database browser(file);
    browser.execute("BEGIN EXCLUSIVE;");
    EXPECT_EQ(item({urls()}).size(), rows(3));
    EXPECT_THROW(item({urls()}).clean(), SQLiteError);
    browser.execute("COMMIT;");
    EXPECT_EQ(countIn("urls"), 3);
}

TEST_F(CleanableSQLiteDatabaseTest, aCleanedDatabaseInWALModeLeavesNoOtherFiles) {
    tests::Database(file).execute("PRAGMA journal_mode = WAL;");
    item({urls()}).clean(hostA);
    EXPECT_EQ(countIn("urls"), 1);
    EXPECT_FALSE(fs::exists(folder / "History-wal"));
    EXPECT_FALSE(fs::exists(folder / "History-shm"));
}

TEST_F(CleanableSQLiteDatabaseTest, requiresAClosedBrowserAlways) {
    EXPECT_TRUE(item({}).requiresClosedBrowserToClean());
}

TEST_F(CleanableSQLiteDatabaseTest, whateverOperationFailsNothingChangesAndNoCopySurvives) {
    const auto before = folder.snapshot();
    for (std::size_t number = 1;; ++number) {
        SCOPED_TRACE(number);
        const auto faulty = std::make_shared<tests::FaultyFileManager>(
            fileManager, tests::Fault{number, std::errc::no_space_on_device});
        try {
            const auto size = CleanableSQLiteDatabase(file, {urls()}, faulty).size();
            EXPECT_TRUE(size == rows(3) || size == CleanableDataSize::zero);
        } catch (const fs::filesystem_error& error) {
            EXPECT_EQ(error.code(), std::errc::no_space_on_device);
        }
        for (const auto& left : fs::directory_iterator(folder / "tmp")) {
            // Of a failed copy the folder stays, empty; of a failed removal, all of it.
            EXPECT_TRUE(fs::is_empty(left) || number == 4) << left;
            fs::remove_all(left);
        }
        EXPECT_EQ(folder.snapshot(), before);
        if (faulty->operationCount() < number) {
            EXPECT_EQ(number, 6U);
            break;
        }
    }
}

/** Copies a part and then fails, as a disk does that fills up. */
class HalfCopyingFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    void copy(const fs::path& from, const fs::path& to) const override {
        ForwardingFileManager::copy(from, to);
        fs::resize_file(to, 100);
        throw fs::filesystem_error("full", to, std::make_error_code(std::errc::no_space_on_device));
    }
};

TEST_F(CleanableSQLiteDatabaseTest, ofACopyThatFailsHalfwayAnEmptyFolderStays) {
    const CleanableSQLiteDatabase half(file, {urls()},
                                       std::make_shared<HalfCopyingFileManager>(fileManager));
    EXPECT_THROW(half.size(), fs::filesystem_error);
    const auto left = fs::directory_iterator(folder / "tmp");
    ASSERT_NE(left, fs::directory_iterator());
    EXPECT_TRUE(fs::is_empty(*left));
}

/** Looks at the copy at the moment of its making. */
class InspectingFileManager : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    void copy(const fs::path& from, const fs::path& to) const override {
        EXPECT_EQ(fs::status(to.parent_path()).permissions(), fs::perms::owner_all);
        ForwardingFileManager::copy(from, to);
        EXPECT_EQ(fs::status(to).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(to.filename(), from.filename());
    }
};

TEST_F(CleanableSQLiteDatabaseTest, theCopyIsReadableByTheUserAlone) {
    fs::permissions(file, fs::perms::all);
    EXPECT_EQ(CleanableSQLiteDatabase(file, {urls()},
                                      std::make_shared<InspectingFileManager>(fileManager))
                  .size(),
              rows(3));
}

}  // namespace
}  // namespace browsersweep
