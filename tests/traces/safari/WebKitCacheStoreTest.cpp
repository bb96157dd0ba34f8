#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/traces/safari/internal/WebKitCacheRecord.h"
#include "browsersweep/traces/safari/internal/WebKitCacheStore.h"

#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

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

}  // namespace
}  // namespace browsersweep
