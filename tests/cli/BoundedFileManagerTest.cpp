#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include <gtest/gtest.h>

#include "cli/BoundedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t halfOfAll = std::uint64_t{1} << 62U;

/** Gives every file half of what can be counted. */
class HugeFiles : public ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;
    FileAttributes attributes(const fs::path& /*path*/) const override { return {halfOfAll}; }
    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return std::make_unique<Enumerator>(ForwardingFileManager::enumerator(directory));
    }

private:
    class Enumerator : public ForwardingEnumerator {
    public:
        using ForwardingEnumerator::ForwardingEnumerator;
        std::optional<std::uint64_t> fileSize() override { return halfOfAll; }
    };
};

TEST(BoundedFileManager, givesOutNoMoreBytesThanAFigureHolds) {
    const tests::TemporaryFolder folder;
    folder.write("a", "");
    folder.write("b", "");
    const BoundedFileManager manager(
        std::make_shared<HugeFiles>(FileManager::forHome(folder.path())));
    const auto entry = manager.enumerator(folder.path());
    ASSERT_TRUE(entry->next());
    EXPECT_EQ(entry->fileSize(), halfOfAll);
    ASSERT_TRUE(entry->next());
    try {
        entry->fileSize();
        FAIL() << "the sum does not fit";
    } catch (const fs::filesystem_error& error) {
        EXPECT_EQ(error.code(), std::errc::value_too_large);
        EXPECT_EQ(error.path1(), folder.path());
    }
    // What the folder had taken is free again: it failed as a whole.
    EXPECT_EQ(manager.attributes(folder / "a").size, halfOfAll);
    EXPECT_THROW(manager.attributes(folder / "a"), fs::filesystem_error);
}

TEST(BoundedFileManager, whatIsNoFolderHasNoEnumerator) {
    const tests::TemporaryFolder folder;
    const BoundedFileManager manager(FileManager::forHome(folder.path()));
    EXPECT_EQ(manager.enumerator(folder / "gone"), nullptr);
}

}  // namespace
}  // namespace browsersweep::cli
