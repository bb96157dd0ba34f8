#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/profiles/safari/SafariNamedProfile.h"
#include "browsersweep/traces/safari/internal/CookieFileStore.h"

#include "tests/support/BinaryCookieFileBuilder.h"
#include "tests/support/Bytes.h"
#include "tests/support/SafariHome.h"
#include "tests/support/SiteStores.h"

namespace browsersweep {
namespace {

using tests::allBut;
using tests::CookieRecord;
using tests::everything;
using tests::only;
using Lines = std::vector<std::string>;

Bytes cookie(const std::string& domain, double creation) {
    CookieRecord record;
    record.url = domain;
    record.creation = creation;
    return record.data();
}

std::string textOfBytes(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

std::string fileOf(const std::vector<Bytes>& records) {
    return textOfBytes(tests::cookieFile({tests::cookiePage(records)}, tests::emptyDictionary()));
}

/** Notes what would be run. */
class Launches : public ProcessLauncher {
public:
    void runAndWait(const std::filesystem::path& /*executable*/,
                    std::span<const std::string> arguments) const noexcept override {
        lines_.push_back(arguments.back());
    }
    const Lines& lines() const noexcept { return lines_; }

private:
    mutable Lines lines_;
};

class CookieFile : public testing::Test {
protected:
    static SystemServices services(const std::shared_ptr<Launches>& launches) {
        SystemServices services = SystemServices::isolated();
        services.processLauncher = launches;
        const auto storage = HTTPCookieStorage::shared("CookieFileStoreTest");
        services.sharedCookieStorage = [storage](std::string_view) { return storage; };
        return services;
    }

    std::shared_ptr<Launches> launches = std::make_shared<Launches>();
    tests::SafariHome home{services(launches)};
};

TEST_F(CookieFile, isListedByDomain) {
    for (const std::string place : {"Cookies", "container:Cookies"}) {
        home.write(place + "/Cookies.binarycookies",
                   fileOf({cookie(".a.test", 600000000), cookie("www.a.test", 700000000.25),
                           cookie("nota.test", 1)}));
        const TraceListing listing = home.store(place + "/Cookies.binarycookies")->list({});
        EXPECT_EQ(tests::inShort(listing), (Lines{"a.test cookies 2", "nota.test cookies 1"}));
        EXPECT_EQ(listing.bySite[0].lastUsed, dateFromReferenceSeconds(700000000.25));
    }
    EXPECT_EQ(launches->lines(), Lines{});
}

TEST_F(CookieFile, keepsTheRecordsOfOtherSitesByteForByte) {
    const Bytes ofB = cookie("b.test", 5.5);
    const Bytes ofC = cookie("www.c.test", 6.5);
    const auto file = home.write("Cookies/Cookies.binarycookies",
                                 fileOf({cookie(".a.test", 1), ofB, cookie("x.a.test", 2), ofC}));
    EXPECT_EQ(home.store("Cookies/Cookies.binarycookies")->forget(only({"a.test"})),
              ForgetOutcome());
    EXPECT_EQ(tests::readFile(file), fileOf({ofB, ofC}));
    home.store("Cookies/Cookies.binarycookies")->forget(allBut({"c.test"}));
    EXPECT_EQ(tests::readFile(file), fileOf({ofC}));
    home.store("Cookies/Cookies.binarycookies")->forget(everything());
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(CookieFile, isLeftAsItIsWhereNoneOfItsCookiesGoes) {
    // Its checksum is wrong, so that a file that is written again would differ.
    std::string contents = fileOf({cookie("a.test", 1)});
    contents[contents.size() - tests::emptyDictionary().size() - 9] ^= '\1';
    const auto file = home.write("Cookies/Cookies.binarycookies", contents);
    home.store("Cookies/Cookies.binarycookies")->forget(only({"b.test"}));
    EXPECT_EQ(tests::readFile(file), contents);
    EXPECT_EQ(launches->lines(), Lines{});
}

TEST_F(CookieFile, ofTheSystemStopsTheDaemonsAndTakesTheCookiesFromTheirStorage) {
    const auto storage = home.home.services().sharedCookieStorage("Cookies");
    storage->setCookie({".a.test", "n", "/"});
    storage->setCookie({"b.test", "n", "/"});
    home.write("Cookies/Cookies.binarycookies", fileOf({cookie("a.test", 1)}));
    home.store("Cookies/Cookies.binarycookies")->forget(only({"a.test"}));
    EXPECT_EQ(launches->lines(),
              (Lines{"killall -KILL nsurlstoraged", "killall -KILL nsurlsessiond"}));
    EXPECT_EQ(storage->cookies(), (std::vector<HTTPCookie>{{"b.test", "n", "/"}}));
    storage->deleteCookie({"b.test", "n", "/"});
}

TEST_F(CookieFile, ofANamedProfileConcernsNoDaemon) {
    const std::string identifier = "0F1E2D3C-0000-4000-8000-0123456789AB";
    const std::string place =
        "container:WebKit/WebsiteDataStore/0f1e2d3c-0000-4000-8000-0123456789ab/"
        "Cookies/Cookies.binarycookies";
    const auto file = home.write(place, fileOf({cookie("a.test", 1), cookie("b.test", 2)}));
    const SafariNamedProfile profile("Work", identifier, home.home);
    tests::storeAt(traceStores(profile, home.home), file)->forget(only({"a.test"}));
    EXPECT_EQ(tests::readFile(file), fileOf({cookie("b.test", 2)}));
    EXPECT_EQ(launches->lines(), Lines{});
}

TEST_F(CookieFile, thatIsDamagedIsAnErrorAndStays) {
    const auto file = home.write("Cookies/Cookies.binarycookies", "cook and no more");
    EXPECT_THROW(home.store("Cookies/Cookies.binarycookies")->list({}), BinaryDecodingError);
    EXPECT_THROW(home.store("Cookies/Cookies.binarycookies")->forget(everything()),
                 BinaryDecodingError);
    EXPECT_EQ(tests::readFile(file), "cook and no more");
}

TEST_F(CookieFile, thatIsMissingHoldsNothing) {
    EXPECT_EQ(home.store("Cookies/Cookies.binarycookies")->list({}), TraceListing());
    EXPECT_EQ(home.store("Cookies/Cookies.binarycookies")->forget(everything()), ForgetOutcome());
    EXPECT_EQ(launches->lines(), Lines{});
}

}  // namespace
}  // namespace browsersweep
