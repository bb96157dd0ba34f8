#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/safari/internal/WebKitCacheRecord.h"
#include "browsersweep/traces/safari/internal/WebKitCacheStore.h"

#include "tests/support/ForwardingFileManager.h"
#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using tests::allBut;
using tests::everything;
using tests::only;
using tests::webKitText;
using Lines = std::vector<std::string>;

/** A record: version, key, digests, times and sizes, and what the server said. */
std::string record(const std::string& address, char body, const std::string& partition = "",
                   const std::string& type = "Resource", const std::string& rest = "") {
    const std::string noRange(4, '\xFF');
    return std::string("\x11\0\0\0", 4) + webKitText(partition) + webKitText(type) +
           webKitText(address) + noRange + std::string(40, 'k') + std::string(8, 't') +
           std::string(20, 'h') + std::string(8, '\0') + std::string(20, body) +
           std::string(8, '\0') + '\0' + std::string(20, 'c') + rest;
}

/** The name of the file with the contents that a record's letter stands for. */
std::string bodyName(char body) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string name;
    for (int index = 0; index < 20; ++index) {
        name += digits[static_cast<unsigned char>(body) / 16U];
        name += digits[static_cast<unsigned char>(body) % 16U];
    }
    return name;
}

TEST(WebKitCacheRecord, beginsWithItsKeyAndTellsWhereItsContentsLie) {
    const auto found = webKitCacheRecord(record("https://www.a.test/x", 'b', "b.test"));
    EXPECT_EQ(found,
              (WebKitCacheRecord{"b.test", "Resource", "https://www.a.test/x", bodyName('b')}));
    EXPECT_EQ(found->hosts(), (Lines{"www.a.test", "b.test"}));
}

TEST(WebKitCacheRecord, thatIsCutOffIsNone) {
    const std::string whole = record("https://www.a.test/x", 'b');
    const std::size_t needed = whole.size() - 8 - 1 - 20;
    for (std::size_t length = 0; length < needed; ++length) {
        EXPECT_EQ(webKitCacheRecord(whole.substr(0, length)), std::nullopt) << length;
    }
    EXPECT_NE(webKitCacheRecord(whole.substr(0, needed)), std::nullopt);
    EXPECT_EQ(webKitCacheRecord(std::string(200, '\xFE')), std::nullopt);
}

/** A file manager to which a folder is closed. */
class WithoutAccessTo : public tests::ForwardingFileManager {
public:
    WithoutAccessTo(fs::path closed, std::shared_ptr<const FileManager> target)
        : ForwardingFileManager(std::move(target)), closed_(std::move(closed)) {}

    std::vector<FolderEntry> entries(const fs::path& directory) const override {
        return directory == closed_ ? std::vector<FolderEntry>()
                                    : ForwardingFileManager::entries(directory);
    }
    std::unique_ptr<DirectoryEnumerator> enumerator(const fs::path& directory) const override {
        return directory == closed_ ? nullptr : ForwardingFileManager::enumerator(directory);
    }

private:
    fs::path closed_;
};

class WebKitCache : public testing::Test {
protected:
    static constexpr const char* root = "container:Caches/WebKit/NetworkCache";

    void SetUp() override {
        writeRecord("Resource/A1", record("https://www.a.test/1", '1'));
        writeRecord("Resource/A2", record("https://cdn.c.test/2", '2', "a.test"));
        writeRecord("Resource/A2-blob", "contents");
        writeRecord("Resource/B1", record("https://b.test/1", '3'));
        writeRecord("Resource/B1-blob", "contents of both");
        writeRecord("Resource/A3", record("https://www.a.test/3", '3'));
        writeRecord("SubResources/B1",
                    record("https://b.test/", '4', "", "SubResources", "https://www.a.test/y"));
        home.write(std::string(root) + "/Version 17/Blobs/" + bodyName('2'), "contents");
        home.write(std::string(root) + "/Version 17/Blobs/" + bodyName('3'), "contents of both");
        home.write(std::string(root) + "/Version 17/salt", "salt");
    }

    void writeRecord(const std::string& name, const std::string& contents) const {
        home.write(std::string(root) + "/Version 17/Records/P/" + name, contents);
    }

    Lines filesLeft() const {
        Lines left = home.names(std::string(root) + "/Version 17");
        std::erase_if(left, [](const std::string& name) {
            const std::string last = name.substr(name.rfind('/') + 1);
            return last == "Records" || last == "P" || last == "Resource" ||
                   last == "SubResources" || last == "Blobs";
        });
        return left;
    }

    tests::SafariHome home;
};

TEST_F(WebKitCache, isListedByTheAddressAndTheSiteThatItWasLoadedIn) {
    const auto before = home.folder.snapshot();
    EXPECT_EQ(tests::inShort(home.store(root)->list({})),
              (Lines{"a.test cachedFiles 3", "b.test cachedFiles 2", "c.test cachedFiles 1"}));
    EXPECT_EQ(home.folder.snapshot(), before);
}

TEST_F(WebKitCache, recordsOfASiteGoWithTheirContentsUnlessAnotherHasTheSame) {
    EXPECT_EQ(home.store(root)->forget(only({"a.test"})), ForgetOutcome());
    EXPECT_EQ(filesLeft(), (Lines{"Blobs/" + bodyName('3'), "Records/P/Resource/B1",
                                  "Records/P/Resource/B1-blob", "salt"}));
}

TEST_F(WebKitCache, ofAllButOneTheListsOfThatOneStay) {
    home.store(root)->forget(allBut({"b.test"}));
    EXPECT_EQ(filesLeft(),
              (Lines{"Blobs/" + bodyName('3'), "Records/P/Resource/B1",
                     "Records/P/Resource/B1-blob", "Records/P/SubResources/B1", "salt"}));
    home.store(root)->forget(everything());
    EXPECT_EQ(home.names(root), Lines{});
}

TEST_F(WebKitCache, whatCannotBeReadIsToldAndStaysWithContentsThatItMayNeed) {
    writeRecord("Resource/Z", "of a later version");
    const auto store = home.store(root);
    EXPECT_EQ(tests::inShort(store->list({})).back(), "? cachedFiles 1");
    EXPECT_EQ(store->forget(only({"b.test"})).kept.size(), 1U);
    EXPECT_EQ(filesLeft(),
              (Lines{"Blobs/" + bodyName('2'), "Blobs/" + bodyName('3'), "Records/P/Resource/A1",
                     "Records/P/Resource/A2", "Records/P/Resource/A2-blob", "Records/P/Resource/A3",
                     "Records/P/Resource/Z", "salt"}));
    store->forget(allBut({"a.test"}));
    EXPECT_FALSE(std::filesystem::exists(
        home.container() / "Caches/WebKit/NetworkCache/Version 17/Records/P/Resource/Z"));
}

TEST_F(WebKitCache, whatCannotBeReadGoesWhereItNamesTheSite) {
    writeRecord("Resource/Z", "of a later version: https://www.a.test/");
    EXPECT_EQ(home.store(root)->forget(only({"a.test"})), ForgetOutcome());
    EXPECT_EQ(filesLeft(), (Lines{"Blobs/" + bodyName('3'), "Records/P/Resource/B1",
                                  "Records/P/Resource/B1-blob", "salt"}));
}

TEST_F(WebKitCache, aPartWithoutItsRecordGoesWithAnySite) {
    writeRecord("Resource/L-blob", "of a record that is gone");
    const TraceListing listing = home.store(root)->list({});
    ASSERT_EQ(listing.notBySite.size(), 1U);
    EXPECT_TRUE(listing.notBySite[0].goesAlong);
    EXPECT_EQ(listing.notBySite[0].size.itemCount, CleanableDataSize::Measurement(1));
    home.store(root)->forget(only({"b.test"}));
    EXPECT_FALSE(std::filesystem::exists(
        home.container() / "Caches/WebKit/NetworkCache/Version 17/Records/P/Resource/L-blob"));
}

TEST_F(WebKitCache, contentsThatNoRecordHasAreToldAndGoWithAnySite) {
    const std::string lost = std::string(root) + "/Version 17/Blobs/" + bodyName('L');
    home.write(lost, "of a record that is gone");
    const auto store = home.store(root);
    const TraceListing listing = store->list({});
    ASSERT_EQ(listing.notBySite.size(), 1U);
    EXPECT_TRUE(listing.notBySite[0].goesAlong);
    EXPECT_EQ(listing.notBySite[0].size, (CleanableDataSize{1, 24}));
    store->forget(only({"other.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/Version 17/Blobs"),
              (Lines{bodyName('2'), bodyName('3')}));
    home.write(lost, "of a record that is gone");
    writeRecord("Resource/Z", "of a later version, which may have them");
    EXPECT_EQ(tests::inShort(store->list({})).back(), "? cachedFiles 1");
    store->forget(only({"other.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/Version 17/Blobs"),
              (Lines{bodyName('2'), bodyName('3'), bodyName('L')}));
}

TEST_F(WebKitCache, contentsStayWhereRecordsMayLieThatAreNotSeen) {
    const std::string inVersion = std::string(root) + "/Version 17/";
    const fs::path version = home.container() / "Caches/WebKit/NetworkCache/Version 17";
    const fs::path records = version / "Records";
    const fs::path elsewhere = home.folder.makeFolder("elsewhere");
    home.write(inVersion + "Blobs/" + bodyName('L'), "of a record that is not seen");
    const auto contents = home.names(inVersion + "Blobs");
    struct Case {
        fs::path place;
        std::function<void(const fs::path&)> make;
    };
    const auto link = [&](const fs::path& place) { fs::create_symlink(elsewhere, place); };
    const auto folder = [](const fs::path& place) { fs::create_directory(place); };
    const auto file = [&](const fs::path& place) {
        home.folder.write(place.lexically_relative(home.folder.path()), "of another layout");
    };
    const std::vector<Case> cases{
        {records / "Q", link},   {records / "P/Resource/Z", link},
        {records / "P/Z", link}, {records / "P/Resource/Z", folder},
        {records / "P/Z", file},
    };
    for (const Case& each : cases) {
        each.make(each.place);
        EXPECT_EQ(home.store(root)->list({}).notBySite, std::vector<MixedTrace>()) << each.place;
        home.store(root)->forget(only({"other.test"}));
        EXPECT_EQ(home.names(inVersion + "Blobs"), contents) << each.place;
        fs::remove(each.place);
    }
    for (const fs::path& closed : {records, records / "P", records / "P/Resource"}) {
        const WebKitCacheStore store(version.parent_path(),
                                     std::make_shared<WithoutAccessTo>(closed, home.manager));
        EXPECT_EQ(store.list({}).notBySite, std::vector<MixedTrace>()) << closed;
        store.forget(only({"other.test"}));
        EXPECT_EQ(home.names(inVersion + "Blobs"), contents) << closed;
    }
}

TEST_F(WebKitCache, contentsOfAVersionWithoutRecordsStay) {
    home.write(std::string(root) + "/Version 99/Blobs/" + bodyName('L'), "of another layout");
    EXPECT_EQ(home.store(root)->list({}).notBySite, std::vector<MixedTrace>());
    home.store(root)->forget(only({"other.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/Version 99/Blobs"), Lines{bodyName('L')});
}

TEST_F(WebKitCache, aFileOfTheSystemBesideTheRecordsHidesNone) {
    writeRecord("../.DS_Store", "how a window showed it");
    const std::string lost = std::string(root) + "/Version 17/Blobs/" + bodyName('L');
    home.write(lost, "of a record that is gone");
    home.store(root)->forget(only({"other.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/Version 17/Blobs"),
              (Lines{bodyName('2'), bodyName('3')}));
}

TEST_F(WebKitCache, aFolderAmongTheContentsCountsWithAllThatGoesWithIt) {
    const std::string lost = std::string(root) + "/Version 17/Blobs/" + bodyName('L');
    home.write(lost + "/one", "12345");
    home.write(lost + "/other", "1234567");
    const TraceListing listing = home.store(root)->list({});
    ASSERT_EQ(listing.notBySite.size(), 1U);
    EXPECT_EQ(listing.notBySite[0].size, (CleanableDataSize{2, 12}));
    home.store(root)->forget(only({"other.test"}));
    EXPECT_EQ(home.names(std::string(root) + "/Version 17/Blobs"),
              (Lines{bodyName('2'), bodyName('3')}));
}

}  // namespace
}  // namespace browsersweep
