#include <filesystem>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "cli/Doctor.h"
#include "tests/support/TemporaryFolder.h"

namespace browsersweep::cli {
namespace {

namespace fs = std::filesystem;

class DoctorTest : public testing::Test {
protected:
    Diagnosis diagnosisOf(const std::vector<Browser>& browsers) const {
        return diagnose(browsers, FileManagerDirectoryProvider(manager_));
    }

    tests::TemporaryFolder folder_;
    std::shared_ptr<const FileManager> manager_ = FileManager::forHome(folder_.path());
};

TEST_F(DoctorTest, everyBrowserHasItsFoldersInTheOrderOfTheCatalogue) {
    folder_.makeFolder("Library/Safari");
    folder_.makeFolder("Library/Application Support/Google/Chrome");
    const Diagnosis diagnosis =
        diagnosisOf({Browser::firefox, Browser::googleChrome, Browser::safari});
    const auto found = nlohmann::json::parse(jsonText(diagnosis));
    const auto place = [this](const char* below, const char* state) {
        return nlohmann::json{
            {"path", (folder_ / "Library" / below).string()}, {"state", state}, {"error", nullptr}};
    };
    const auto browser = [](const char* name, std::vector<nlohmann::json> places) {
        return nlohmann::json{{"browser", name}, {"places", std::move(places)}};
    };
    const std::vector<nlohmann::json> expected{
        browser("firefox", {place("Application Support/Firefox", "missing"),
                            place("Caches/Firefox", "missing")}),
        browser("googleChrome", {place("Application Support/Google/Chrome", "reachable"),
                                 place("Caches/Google/Chrome", "missing")}),
        browser("safari",
                {place("Safari", "reachable"), place("Containers/com.apple.Safari", "missing"),
                 place("Caches/com.apple.Safari", "missing"), place("Cookies", "missing")})};
    EXPECT_EQ(found["browsers"], nlohmann::json(expected));
    EXPECT_EQ(found["needsFullDiskAccess"], false);
    EXPECT_FALSE(diagnosis.isAnythingDenied());
}

TEST_F(DoctorTest, whatCanAllBeReachedIsSaidInOneSentence) {
    folder_.makeFolder("Library/Safari");
    const std::string text = peopleText(diagnosisOf({Browser::safari}), {});
    EXPECT_NE(text.find((folder_ / "Library/Safari").string() + "  "), std::string::npos) << text;
    EXPECT_NE(text.find("can be reached"), std::string::npos) << text;
    EXPECT_NE(text.find("\nEverything that is there can be reached.\n"), std::string::npos) << text;
}

TEST_F(DoctorTest, aProtectedFolderIsSaidToNeedFullDiskAccessOnce) {
    const Place guarded{"/h/Library/Safari", Accessibility::deniedByPrivacyProtection,
                        std::nullopt};
    const Diagnosis diagnosis{{{Browser::safari, {guarded, guarded}}}};
    EXPECT_TRUE(diagnosis.isAnythingDenied());
    EXPECT_TRUE(diagnosis.isAnythingProtected());
    const std::string text = peopleText(diagnosis, {});
    const auto first = text.find("Full Disk Access");
    ASSERT_NE(first, std::string::npos) << text;
    EXPECT_EQ(text.find("Full Disk Access", first + 1), std::string::npos) << text;
    EXPECT_EQ(text.find("Everything"), std::string::npos) << text;
    const auto document = nlohmann::json::parse(jsonText(diagnosis));
    EXPECT_EQ(document["needsFullDiskAccess"], true);
    EXPECT_EQ(document["browsers"][0]["places"][0]["state"], "deniedByPrivacyProtection");
}

TEST_F(DoctorTest, aFolderThatItsPermissionsDenyNeedsNoFullDiskAccess) {
    const Diagnosis diagnosis{
        {{Browser::opera, {{"/h/o", Accessibility::deniedByPermissions, std::nullopt}}}}};
    EXPECT_TRUE(diagnosis.isAnythingDenied());
    EXPECT_FALSE(diagnosis.isAnythingProtected());
    const std::string text = peopleText(diagnosis, {});
    EXPECT_EQ(text.find("Full Disk Access"), std::string::npos) << text;
    EXPECT_NE(text.find("permissions"), std::string::npos) << text;
}

TEST_F(DoctorTest, whatCannotBeFoundOutCarriesItsError) {
    const fs::path support = folder_.makeFolder("Library/Application Support");
    fs::create_symlink("Firefox", support / "Firefox");
    const Diagnosis diagnosis = diagnosisOf({Browser::firefox});
    fs::remove(support / "Firefox");
    EXPECT_TRUE(diagnosis.isAnythingDenied());
    const auto place = nlohmann::json::parse(jsonText(diagnosis))["browsers"][0]["places"][0];
    EXPECT_EQ(place["state"], nullptr);
    EXPECT_NE(place["error"].get<std::string>().find("Too many"), std::string::npos);
}

}  // namespace
}  // namespace browsersweep::cli
