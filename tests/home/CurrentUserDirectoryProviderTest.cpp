#include <string>

#include <gtest/gtest.h>

#include "browsersweep/home/CurrentUserDirectoryProvider.h"

#include "tests/support/ForwardingFileManager.h"

namespace browsersweep {
namespace {

/** A system that knows some of the user's directories. */
class KnowingFileManager : public tests::ForwardingFileManager {
public:
    KnowingFileManager() : ForwardingFileManager(FileManager::forHome("/Users/ada")) {}
    std::vector<std::filesystem::path> directories(SearchPathDirectory directory) const override {
        if (directory == SearchPathDirectory::caches) {
            return {};
        }
        return {"/sandbox/" + std::to_string(static_cast<int>(directory)), "/second"};
    }
};

TEST(CurrentUserDirectoryProvider, withoutAnAnswerTheStandardPlacesBelowTheHomeServe) {
    const FileManagerDirectoryProvider provider(FileManager::forHome("/Users/ada"));
    EXPECT_EQ(provider.applicationSupportDirectory(), "/Users/ada/Library/Application Support/");
    EXPECT_EQ(provider.cachesDirectory(), "/Users/ada/Library/Caches/");
    EXPECT_EQ(provider.libraryDirectory(), "/Users/ada/Library/");
}

TEST(CurrentUserDirectoryProvider, theSystemsFirstAnswerCountsDirectoryByDirectory) {
    const FileManagerDirectoryProvider provider(std::make_shared<KnowingFileManager>());
    EXPECT_EQ(provider.applicationSupportDirectory(), "/sandbox/14");
    EXPECT_EQ(provider.cachesDirectory(), "/Users/ada/Library/Caches/");
    EXPECT_EQ(provider.libraryDirectory(), "/sandbox/5");
}

}  // namespace
}  // namespace browsersweep
