#include <array>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/home/Home.h"

#include "tests/support/AccountCookies.h"
#include "tests/support/ForwardingFileManager.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

/** One more cookie in a storage of the user's programs, taken away again at the end. */
class LiveCookie {
public:
    LiveCookie() { live_->setCookie(cookie_); }
    LiveCookie(const LiveCookie&) = delete;
    LiveCookie& operator=(const LiveCookie&) = delete;
    ~LiveCookie() { live_->deleteCookie(cookie_); }

    /** How many cookies a home sees beside those that the storage had before. */
    static std::size_t seenBy(const Home& home) {
        return home.services().sharedCookieStorage(identifier)->cookies().size();
    }

private:
    static constexpr const char* identifier = "test.browsersweep.home";

    HTTPCookie cookie_{"live.example", "kept", "/"};
    std::shared_ptr<HTTPCookieStorage> live_ = HTTPCookieStorage::shared(identifier);
};

/** Whether a process that the home's services are asked to run leaves its trace. */
bool runsProcesses(const Home& home, const tests::TemporaryFolder& folder) {
    const auto trace = folder / "trace";
    std::filesystem::remove(trace);
    const std::array<std::string, 3> arguments{"-c", ": > \"$0\"", trace.string()};
    home.services().processLauncher->runAndWait("/bin/sh", arguments);
    return std::filesystem::exists(trace);
}

TEST(Home, theCurrentUsersHasTheServicesOfTheRunningSystem) {
    if (!tests::mayUseAccountCookies()) {
        GTEST_SKIP() << tests::whyNoAccountCookies;
    }
    const LiveCookie cookie;
    const tests::TemporaryFolder folder;
    EXPECT_EQ(LiveCookie::seenBy(Home::current()), 1U);
    EXPECT_TRUE(runsProcesses(Home::current(), folder));
    EXPECT_EQ(Home::current().fileManager(), FileManager::defaultManager());
}

TEST(Home, anotherOneTouchesNothingOfTheLiveUsers) {
    if (!tests::mayUseAccountCookies()) {
        GTEST_SKIP() << tests::whyNoAccountCookies;
    }
    const LiveCookie cookie;
    const tests::TemporaryFolder folder;
    const Home home = Home::at(folder.path());
    EXPECT_EQ(LiveCookie::seenBy(home), 0U);
    EXPECT_FALSE(runsProcesses(home, folder));
    EXPECT_EQ(home.directoryProvider()->libraryDirectory(), folder / "Library/");
}

TEST(Home, aStorageOfAnotherHomeHoldsWhatIsPutIntoIt) {
    const auto storage = Home::at("/nowhere").services().sharedCookieStorage("any");
    storage->setCookie({"a.example", "n", "/"});
    EXPECT_EQ(storage->cookies().size(), 1U);
}

class UnknownFileManager : public tests::ForwardingFileManager {
public:
    UnknownFileManager() : ForwardingFileManager(FileManager::defaultManager()) {}
    bool servesCurrentUser() const noexcept override { return FileManager::servesCurrentUser(); }
};

TEST(Home, aFileManagerThatDoesNotSayWhomItServesServesAnother) {
    const tests::TemporaryFolder folder;
    EXPECT_FALSE(runsProcesses(std::make_shared<UnknownFileManager>(), folder));
    EXPECT_TRUE(runsProcesses(
        std::make_shared<tests::ForwardingFileManager>(FileManager::defaultManager()), folder));
    EXPECT_TRUE(runsProcesses(FileManager::defaultManager(), folder));
    EXPECT_FALSE(runsProcesses(FileManager::forHome(folder.path()), folder));
}

TEST(Home, directoriesOfTheHostsOwnAreAnotherHome) {
    const tests::TemporaryFolder folder;
    const auto elsewhere =
        std::make_shared<FileManagerDirectoryProvider>(FileManager::forHome("/elsewhere"));
    const Home home(FileManager::defaultManager(), elsewhere);
    EXPECT_EQ(home.directoryProvider(), elsewhere);
    EXPECT_FALSE(runsProcesses(home, folder));
}

TEST(Home, aHostThatWantsOtherServicesSaysSo) {
    const tests::TemporaryFolder folder;
    const Home home = Home::at(folder.path()).withServices(SystemServices::current());
    EXPECT_TRUE(runsProcesses(home, folder));
    EXPECT_EQ(home.fileManager()->homeDirectory(), folder.path());
}

TEST(Home, itsControlIsTheFileManagers) {
    const auto control = std::make_shared<OperationControl>();
    EXPECT_EQ(Home::current(control).fileManager()->control(), control);
    EXPECT_TRUE(Home::current(control).fileManager()->servesCurrentUser());
    EXPECT_EQ(Home::at("/nowhere", control).fileManager()->control(), control);
    EXPECT_EQ(Home::current().fileManager()->control(), nullptr);
}

}  // namespace
}  // namespace browsersweep
