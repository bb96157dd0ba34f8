#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/profiles/safari/SafariProfileReader.h"

#include "tests/support/FaultyFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

SystemServices noServices() {
    const auto version = [] { return OperatingSystemVersion{10, 15, 0}; };
    const auto storage = [](std::string_view) { return std::shared_ptr<HTTPCookieStorage>(); };
    return {version, storage, {}, {}};
}

TEST(SafariProfileReader, thereIsOneProfileWhetherOrNotSafariWasEverRun) {
    const tests::TemporaryFolder folder;
    const auto fileManager = tests::GuardedFileManager::forFixture(folder);
    const auto profiles =
        SafariProfileReader(Home(fileManager).withServices(noServices())).profiles();
    ASSERT_EQ(1U, profiles.size());
    EXPECT_NE(nullptr, dynamic_cast<const SafariProfile*>(profiles.front().get()));
    EXPECT_EQ(std::vector<std::string>{}, folder.snapshot());
}

TEST(SafariProfileReader, itReadsNoFileAndNeverFails) {
    const tests::TemporaryFolder folder;
    const auto fileManager = std::make_shared<tests::FaultyFileManager>(
        tests::GuardedFileManager::forFixture(folder),
        tests::Fault{1, std::errc::io_error, tests::Fault::Duration::fromThenOn});
    EXPECT_EQ(1U,
              SafariProfileReader(Home(fileManager).withServices(noServices())).profiles().size());
    EXPECT_EQ(0U, fileManager->operationCount());
}

}  // namespace
}  // namespace browsersweep
