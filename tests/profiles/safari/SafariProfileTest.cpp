#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/notifications/SafariSubscription.h"
#include "browsersweep/profiles/safari/SafariProfile.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include "tests/support/ForwardingFileManager.h"
#include "tests/support/GuardedFileManager.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep {
namespace {

using tests::GuardedFileManager;
using tests::TemporaryFolder;
using tests::text;
using Category = CleanableDataCategory;

constexpr OperatingSystemVersion mojave{10, 14, 6};
constexpr OperatingSystemVersion catalina{10, 15, 0};

/** Any use of a file is an error. */
class NoFiles : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    FileExistence fileExists(const std::filesystem::path& path) const noexcept override {
        ADD_FAILURE() << "asked for " << path;
        return {};
    }
    Bytes contents(const std::filesystem::path& path) const override {
        ADD_FAILURE() << "read " << path;
        return {};
    }
};

/** A permissions file that is there and cannot be read. */
class UnreadableFiles : public tests::ForwardingFileManager {
public:
    using ForwardingFileManager::ForwardingFileManager;

    Bytes contents(const std::filesystem::path& path) const override {
        throw std::filesystem::filesystem_error("refused", path,
                                                std::make_error_code(std::errc::permission_denied));
    }
};

class SafariProfileTest : public testing::Test {
protected:
    SystemServices services(OperatingSystemVersion version) {
        *version_ = version;
        SystemServices services;
        services.operatingSystemVersion = [current = version_] { return *current; };
        services.sharedCookieStorage = [this](std::string_view identifier) {
            identifiers_.emplace_back(identifier);
            return std::shared_ptr<HTTPCookieStorage>();
        };
        return services;
    }
    SafariProfile profile() { return profileOver(fileManager_, catalina); }
    SafariProfile profileOver(const Home& home, OperatingSystemVersion version) {
        return SafariProfile(home.withServices(services(version)));
    }

    std::filesystem::path library() const {
        return FileManagerDirectoryProvider(fileManager_).libraryDirectory();
    }
    void write(const std::filesystem::path& below, const PropertyList& value) const {
        const Bytes data = value.binaryData();
        write(below, std::string(data.begin(), data.end()));
    }
    void write(const std::filesystem::path& below, const std::string& contents) const {
        folder_.write(std::filesystem::relative(library(), folder_.path()) / below, contents);
    }
    std::vector<SafariSubscription> subscriptions(const SafariProfile& profile) const {
        std::vector<SafariSubscription> found;
        for (const auto& subscription : profile.notificationSubscriptions()) {
            found.push_back(dynamic_cast<const SafariSubscription&>(*subscription));
        }
        return found;
    }

    TemporaryFolder folder_;
    std::shared_ptr<const FileManager> fileManager_ = GuardedFileManager::forFixture(folder_);
    std::vector<std::string> identifiers_;
    std::shared_ptr<OperatingSystemVersion> version_ = std::make_shared<OperatingSystemVersion>();
};

PropertyList permissionsFor(std::string site) {
    return PropertyList::dictionary(
        {{site,
          PropertyList::dictionary({{"Allowed Domains", PropertyList::array({text(site)})}})}});
}

struct DirectoryRow {
    std::filesystem::path path;
    bool requiresClosedBrowser;
    std::size_t filterCount;

    friend bool operator==(const DirectoryRow&, const DirectoryRow&) = default;
};

std::vector<DirectoryRow> directories(const CleanableDataMap& map, Category category) {
    std::vector<DirectoryRow> rows;
    for (const auto& item : map.find(category)->items()) {
        const auto& directory = dynamic_cast<const CleanableDirectory&>(*item);
        rows.push_back({directory.directory(), directory.requiresClosedBrowserToClean(),
                        directory.filters().size()});
    }
    return rows;
}

std::vector<DirectoryRow> cacheRows(const std::filesystem::path& library, bool closed) {
    const std::filesystem::path container =
        library / "Containers/com.apple.Safari/Data/Library/Caches";
    return {{container / "com.apple.Safari/", closed, 0},
            {container / "WebKit/", closed, 0},
            {library / "Caches/com.apple.Safari/", closed, 0}};
}

TEST_F(SafariProfileTest, itIsPrimaryAndHasNoName) {
    EXPECT_EQ(std::nullopt, profile().name());
    EXPECT_TRUE(profile().isPrimary());
    EXPECT_EQ(Browser::safari, profile().sourceBrowser());
}

TEST_F(SafariProfileTest, itsFoldersLieInLibrary) {
    EXPECT_EQ(profile().folders(),
              (ProfileFolders{library() / "Safari", library() / "Caches/com.apple.Safari"}));
}

TEST_F(SafariProfileTest, thereIsNoFormDataAtAll) {
    const CleanableDataMap map = profile().cleanableData();
    EXPECT_EQ(nullptr, map.find(Category::formData));
    for (const Category category : {Category::cache, Category::history, Category::httpCookies,
                                    Category::flashCookies, Category::localStorage}) {
        EXPECT_NE(nullptr, map.find(category));
    }
}

TEST_F(SafariProfileTest, eachCategoryLiesInItsPlace) {
    const CleanableDataMap map = profile().cleanableData();
    EXPECT_EQ(cacheRows(library(), true), directories(map, Category::cache));
    EXPECT_EQ((std::vector<DirectoryRow>{{library() / "Preferences/Macromedia/", false, 0}}),
              directories(map, Category::flashCookies));
    EXPECT_EQ((std::vector<DirectoryRow>{{library() / "Safari/LocalStorage/", true, 0}}),
              directories(map, Category::localStorage));
    const auto& history = map.find(Category::history)->items();
    ASSERT_EQ(1U, history.size());
    EXPECT_EQ(library() / "Safari/History.db",
              dynamic_cast<const SafariHistoryCleanableDatabase&>(*history[0]).file());
}

TEST_F(SafariProfileTest, theCookiesAreThoseOfTheSharedContainer) {
    const CleanableDataMap map = profile().cleanableData();
    const auto& cookies = map.find(Category::httpCookies)->items();
    ASSERT_EQ(1U, cookies.size());
    EXPECT_NE(nullptr, dynamic_cast<const CleanableSafariCookies*>(cookies[0].get()));
    EXPECT_EQ(std::vector<std::string>{"Cookies"}, identifiers_);
}

TEST_F(SafariProfileTest, theCacheNeedsSafariClosedFromCatalinaOn) {
    for (const auto& [version, closed] : {std::pair(mojave, false), std::pair(catalina, true),
                                          std::pair(OperatingSystemVersion{26, 0, 0}, true)}) {
        SCOPED_TRACE(version.minor);
        const CleanableDataMap map = profileOver(fileManager_, version).cleanableData();
        EXPECT_EQ(cacheRows(library(), closed), directories(map, Category::cache));
        EXPECT_TRUE(map.find(Category::localStorage)->requiresClosedBrowserToClean());
        EXPECT_FALSE(map.find(Category::flashCookies)->requiresClosedBrowserToClean());
    }
}

TEST_F(SafariProfileTest, theVersionIsAskedEachTime) {
    const SafariProfile profile = profileOver(fileManager_, mojave);
    EXPECT_FALSE(profile.cleanableData().find(Category::cache)->requiresClosedBrowserToClean());
    *version_ = catalina;
    EXPECT_TRUE(profile.cleanableData().find(Category::cache)->requiresClosedBrowserToClean());
}

TEST_F(SafariProfileTest, listingItsDataTouchesNoFile) {
    const auto noFiles = std::make_shared<NoFiles>(fileManager_);
    EXPECT_EQ(5U, profileOver(noFiles, catalina).cleanableData().lists().size());
}

TEST_F(SafariProfileTest, theDirectoriesCanBeReplacedOnTheirOwn) {
    const TemporaryFolder other;
    const auto provider =
        std::make_shared<FileManagerDirectoryProvider>(GuardedFileManager::forFixture(other));
    const SafariProfile profile = profileOver(Home(fileManager_, provider), catalina);
    EXPECT_EQ(cacheRows(provider->libraryDirectory(), true),
              directories(profile.cleanableData(), Category::cache));
}

TEST_F(SafariProfileTest, withoutItsFileTheBookmarksAreAnError) {
    EXPECT_THROW(profile().bookmarks(), std::filesystem::filesystem_error);
    folder_.makeFolder(std::filesystem::relative(library(), folder_.path()) /
                       "Safari/Bookmarks.plist");
    EXPECT_THROW(profile().bookmarks(), std::filesystem::filesystem_error);
}

TEST_F(SafariProfileTest, bookmarksAreReadAfreshAtEachCall) {
    const auto file = [](std::string address) {
        return PropertyList::dictionary(
            {{"Children", PropertyList::array({PropertyList::dictionary(
                              {{"URLString", text(std::move(address))}})})}});
    };
    const SafariProfile profile = this->profile();
    write("Safari/Bookmarks.plist", file("https://a.example/"));
    EXPECT_EQ((std::vector<Bookmark>{{std::nullopt, URL::parse("https://a.example/").value()}}),
              profile.bookmarks());
    write("Safari/Bookmarks.plist", file("https://b.example/"));
    EXPECT_EQ((std::vector<Bookmark>{{std::nullopt, URL::parse("https://b.example/").value()}}),
              profile.bookmarks());
    write("Safari/Bookmarks.plist", "two words");
    EXPECT_THROW(profile.bookmarks(), DecodingError);
}

TEST_F(SafariProfileTest, permissionsNameTheirSiteAndFile) {
    write("Safari/RemoteNotifications/Permissions.plist", permissionsFor("https://a.example"));
    const std::vector<SafariSubscription> expected{
        {URL::parse("https://a.example").value(), Browser::safari,
         library() / "Safari/RemoteNotifications/Permissions.plist"}};
    EXPECT_EQ(expected, subscriptions(profile()));
}

TEST_F(SafariProfileTest, blockingLeavesThePermissionsAsTheyAre) {
    write("Safari/RemoteNotifications/Permissions.plist", permissionsFor("https://a.example"));
    const std::vector<std::string> before = folder_.snapshot();
    const std::vector<SafariSubscription> listed = subscriptions(profile());
    ASSERT_EQ(1U, listed.size());
    listed.front().blockNotifications();
    EXPECT_EQ(before, folder_.snapshot());
    EXPECT_EQ(listed, subscriptions(profile()));
}

TEST_F(SafariProfileTest, permissionsThatCannotBeReadAreNone) {
    const std::vector<SafariSubscription> none;
    const std::filesystem::path file = "Safari/RemoteNotifications/Permissions.plist";
    EXPECT_EQ(none, subscriptions(profile())) << "missing";
    for (const char* contents : {"", "two words", "bplist00", "<plist><array/></plist>", "( a )"}) {
        SCOPED_TRACE(contents);
        write(file, contents);
        EXPECT_EQ(none, subscriptions(profile()));
    }
    const auto unreadable = std::make_shared<UnreadableFiles>(fileManager_);
    EXPECT_EQ(none, subscriptions(profileOver(unreadable, catalina)));
}

TEST_F(SafariProfileTest, aDirectoryInThePlaceOfThePermissionsIsNone) {
    folder_.makeFolder(std::filesystem::relative(library(), folder_.path()) /
                       "Safari/RemoteNotifications/Permissions.plist");
    EXPECT_EQ(std::vector<SafariSubscription>{}, subscriptions(profile()));
}

}  // namespace
}  // namespace browsersweep
