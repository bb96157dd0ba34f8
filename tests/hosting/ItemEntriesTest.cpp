#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/hosting/ItemEntries.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/Database.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/RecordingItem.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using Components = SQLiteStatementComponents;
using Filters = std::vector<CleanableDataFilter>;
using Entries = std::vector<ItemEntry>;
using Measurement = CleanableDataSize::Measurement;
using Rule = CleanableDataFilter::Rule;

class ItemEntriesTest : public testing::Test {
protected:
    tests::TemporaryFolder folder;
    std::shared_ptr<const FileManager> fileManager = tests::GuardedFileManager::forFixture(folder);
};

TEST_F(ItemEntriesTest, ofAFolderAreItsSelectedFilesWithTheirPaths) {
    folder.write("cache/a.txt", "123");
    folder.write("cache/sub/deep/b.txt", "12345");
    folder.write("cache/sub/kept", "1");
    const CleanableDirectory item(folder / "cache", false, {}, fileManager);
    auto entries = entriesOf(item, Filters{{Rule::exclude, {"kept"}}});
    std::sort(entries.begin(), entries.end(),
              [](const auto& one, const auto& other) { return one.path < other.path; });
    EXPECT_EQ(entries, (Entries{{folder / "cache/a.txt", "", 1, Measurement{3}},
                                {folder / "cache/sub/deep/b.txt", "", 1, Measurement{5}}}));
}

TEST_F(ItemEntriesTest, ofADatabaseAreTablesWithSelectedRows) {
    const auto file = folder / "History";
    tests::Database(file).execute(
        "CREATE TABLE urls (url TEXT); INSERT INTO urls VALUES ('a.test'), ('b.test');"
        "CREATE TABLE downloads (name TEXT); INSERT INTO downloads VALUES ('x'), ('y'), ('z');"
        "CREATE TABLE empty (name TEXT);");
    const auto before = folder.snapshot();
    const CleanableSQLiteDatabase item(file,
                                       {Components::withPatternColumn("urls", "url", {}),
                                        {"downloads", std::nullopt, {}},
                                        {"empty", std::nullopt, {}},
                                        {"missing", std::nullopt, {}}},
                                       fileManager);
    EXPECT_EQ(entriesOf(item, Filters{{Rule::include, {"a.test"}}}),
              (Entries{{file, "urls", 1, std::nullopt}, {file, "downloads", 3, std::nullopt}}));
    EXPECT_EQ(entriesOf(item, Filters{{Rule::include, {"c.test"}}}),
              (Entries{{file, "downloads", 3, std::nullopt}}));
    EXPECT_EQ(folder.snapshot(), before);
}

TEST_F(ItemEntriesTest, ofSafarisCookiesAreTheirFiles) {
    const Bytes record = tests::CookieRecord().data();
    const Bytes bytes =
        tests::cookieFile({tests::cookiePage({record, record})}, tests::emptyDictionary());
    const auto file = folder.write("Library/Cookies/Cookies.binarycookies",
                                   std::string(bytes.begin(), bytes.end()));
    const CleanableSafariCookies item{Home(fileManager)};
    EXPECT_EQ(entriesOf(item, {}), (Entries{{file, "", 2, Measurement{bytes.size()}}}));
    EXPECT_EQ(entriesOf(item, Filters{{Rule::exclude, {"x"}}}), Entries());
}

TEST_F(ItemEntriesTest, ofAnotherItemAreOne) {
    const tests::RecordingItem item("own", {4, 40}, std::make_shared<std::vector<std::string>>());
    EXPECT_EQ(entriesOf(item, {}), (Entries{{"", "", 4, Measurement{40}}}));
}

}  // namespace
}  // namespace browsersweep
