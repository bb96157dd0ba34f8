#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"

#include "tests/support/DateFilter.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/ListedFolder.h"
#include "tests/support/SystemUnderTest.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using tests::ListedEntry;
using tests::ListedFolder;
using Entries = std::vector<ListedEntry>;
using Lines = std::vector<std::string>;

std::shared_ptr<const ListedFolder> folderOf(Entries entries) {
    return std::make_shared<const ListedFolder>(std::move(entries));
}

CleanableDirectory directory(std::shared_ptr<const FileManager> fileManager) {
    return {"/folder", true, {}, std::move(fileManager)};
}

TEST(CleanableDirectoryEntries, whatHasNoSizeIsNotCounted) {
    const auto folder =
        folderOf({{"a", false, 10}, {"b", false, std::nullopt}, {"c", true, std::nullopt}});
    EXPECT_EQ(directory(folder).size(), (CleanableDataSize{1, 10}));
}

TEST(CleanableDirectoryEntries, whatHasASizeIsCountedWhateverItsKind) {
    const auto folder = folderOf({{"a", std::nullopt, 10}, {"b", true, 20}, {"c", false, 30}});
    EXPECT_EQ(directory(folder).size(), (CleanableDataSize{3, 60}));
}

TEST(CleanableDirectoryEntries, whatTheFiltersRejectIsAskedNeitherForItsSizeNorItsKind) {
    const auto folder = folderOf({{"a", false, 1, true, false}, {"b", false, 2}});
    const std::vector<CleanableDataFilter> butA{{CleanableDataFilter::Rule::exclude, {"a"}}};
    EXPECT_EQ(directory(folder).size(butA), (CleanableDataSize{1, 2}));
    directory(folder).clean(butA);
    EXPECT_EQ(folder->removed(), Lines{"b"});
}

TEST(CleanableDirectoryEntries, anEntryThatCannotBeAskedEndsTheCallWithItsError) {
    const auto folder = folderOf({{"a"}, {"b", false, 1, true, false}, {"c"}});
    EXPECT_THROW(directory(folder).size(), fs::filesystem_error);
    try {
        directory(folder).clean();
        FAIL() << "no error";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::io_error);
    }
    EXPECT_EQ(folder->removed(), Lines{"a"});
}

TEST(CleanableDirectoryEntries, whatHasNoKindIsLeft) {
    const auto folder = folderOf({{"a", false}, {"b", std::nullopt}, {"c", true}, {"d", false}});
    directory(folder).clean();
    EXPECT_EQ(folder->removed(), (Lines{"a", "d"}));
}

TEST(CleanableDirectoryEntries, aFileWithoutASizeIsDeletedAllTheSame) {
    const auto folder = folderOf({{"a", false, std::nullopt}});
    directory(folder).clean();
    EXPECT_EQ(folder->removed(), Lines{"a"});
}

TEST(CleanableDirectoryEntries, whereNothingCanBeEnumeratedThereIsNothing) {
    const auto folder = std::make_shared<const ListedFolder>(std::nullopt);
    EXPECT_EQ(directory(folder).size(), CleanableDataSize::zero);
    EXPECT_NO_THROW(directory(folder).clean());
}

TEST(CleanableDirectoryEntries, theFirstDeletionThatFailsEndsTheClean) {
    const auto folder = folderOf({{"a"}, {"b", false, 1, false}, {"c"}});
    try {
        directory(folder).clean();
        FAIL() << "no error";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::read_only_file_system);
    }
    EXPECT_EQ(folder->removed(), Lines{"a"});
}

TEST(CleanableDirectoryEntries, aFileOfTheLargestSizeIsCounted) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    const auto folder = folderOf({{"a", false, static_cast<std::uint64_t>(largest)}});
    EXPECT_EQ(directory(folder).size(), (CleanableDataSize{1, largest}));
}

TEST(CleanableDirectoryEntriesDeathTest, aLargerFileEndsTheProcess) {
    const auto folder = folderOf({{"a", false, std::uint64_t{1} << 63U}});
    EXPECT_DEATH(directory(folder).size(), "does not fit in 63 bits");
}

TEST(CleanableDirectoryEntries, datesAreThoseOfTheCreationNotOfTheLastChange) {
    if (tests::isEmulated("birth=no")) {
        GTEST_SKIP() << "the file system keeps no birth times";
    }
    const tests::TemporaryFolder folder;
    const fs::path file = folder.write("cache/file", "12345");
    const auto year = std::chrono::hours(24 * 365);
    fs::last_write_time(file, fs::file_time_type::clock::now() - 10 * year);
    const CleanableDirectory item(folder / "cache", true, {},
                                  tests::GuardedFileManager::forFixture(folder));
    const double now = referenceSeconds(ReferenceClock::now());
    const std::chrono::duration<double> span(year);
    const std::vector recent{tests::dates(tests::inside, now - span.count(), std::nullopt)};
    const std::vector longAgo{tests::dates(tests::inside, std::nullopt, now - span.count())};
    EXPECT_EQ(item.size(recent), (CleanableDataSize{1, 5}));
    EXPECT_EQ(item.size(longAgo), CleanableDataSize::zero);
}

}  // namespace
}  // namespace browsersweep
