#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cli/ProfileNames.h"

namespace browsersweep::cli {
namespace {

class FakeProfile : public BrowserProfile {
public:
    FakeProfile(Browser browser, std::optional<std::string> name, std::string folder)
        : browser_(browser), name_(std::move(name)), folder_(std::move(folder)) {}
    std::optional<std::string> name() const override { return name_; }
    std::optional<std::string> folder() const override { return folder_; }
    Browser sourceBrowser() const noexcept override { return browser_; }
    bool isPrimary() const noexcept override { return true; }
    CleanableDataMap cleanableData() const override {
        return CleanableDataMap(CleanableDataMap::Lists{});
    }
    std::vector<Bookmark> bookmarks() const override { return {}; }
    std::vector<std::shared_ptr<const NotificationSubscription>> notificationSubscriptions()
        const override {
        return {};
    }

private:
    Browser browser_;
    std::optional<std::string> name_;
    std::string folder_;
};

using Profiles = std::vector<std::shared_ptr<const BrowserProfile>>;

class FakeCleaner : public BrowserCleaner, private BrowserProfileReader {
public:
    explicit FakeCleaner(Profiles profiles) : profiles_(std::move(profiles)) {}
    std::string_view name() const noexcept override { return "Fake"; }
    std::string_view bundleIdentifier() const noexcept override { return "fake"; }
    const BrowserProfileReader& profileReader() const noexcept override { return *this; }

private:
    Profiles profiles() const override {
        if (profiles_.empty()) {
            throw std::runtime_error("unreadable");
        }
        return profiles_;
    }

    Profiles profiles_;
};

/** Edge shows the profile in "Default" by the name of the folder of another, as it really does. */
class ProfileNames : public testing::Test {
protected:
    ProfileNames() {
        selection_.browsers = {Browser::microsoftEdge, Browser::opera, Browser::brave};
    }

    std::vector<std::string> settle(std::vector<std::string> names) {
        selection_.profileNames = std::move(names);
        selection_.profileFolders.clear();
        return settleProfiles(selection_,
                              [this](Browser browser) -> std::unique_ptr<const BrowserCleaner> {
                                  return std::make_unique<FakeCleaner>(
                                      browser == Browser::microsoftEdge
                                          ? edge_
                                          : (browser == Browser::opera ? opera_ : none_));
                              },
                              {});
    }

    std::vector<bool> selected() const {
        std::vector<bool> selected;
        for (const auto& profile : {edge_[0], edge_[1], opera_[0], opera_[1]}) {
            selected.push_back(selection_.includes(*profile));
        }
        return selected;
    }

    static std::shared_ptr<const BrowserProfile> profile(Browser browser,
                                                         std::optional<std::string> name,
                                                         std::string folder) {
        return std::make_shared<FakeProfile>(browser, std::move(name), std::move(folder));
    }

    Profiles edge_{profile(Browser::microsoftEdge, "Profile 1", "Default"),
                   profile(Browser::microsoftEdge, "Profile 2", "Profile 1")};
    Profiles opera_{profile(Browser::opera, std::nullopt, "Default"),
                    profile(Browser::opera, "Work", "Profile 1")};
    Profiles none_;
    Selection selection_;
};

TEST_F(ProfileNames, aNameGoesBeforeAFolderInEachBrowser) {
    EXPECT_EQ(settle({"Profile 1"}), std::vector<std::string>{});
    EXPECT_EQ(selected(), (std::vector<bool>{true, false, false, true}));
}

TEST_F(ProfileNames, aFolderFindsAProfileWithoutAName) {
    EXPECT_EQ(settle({"Default"}), std::vector<std::string>{});
    EXPECT_EQ(selected(), (std::vector<bool>{true, false, true, false}));
}

TEST_F(ProfileNames, profilesOfOneNameAreChosenTogetherAndEachByItsFolderOrAsReportsCallIt) {
    edge_ = {profile(Browser::microsoftEdge, "Profile 1", "Default"),
             profile(Browser::microsoftEdge, "Profile 1", "Profile 1")};
    EXPECT_EQ(settle({"Profile 1"}), std::vector<std::string>{});
    EXPECT_EQ(selected(), (std::vector<bool>{true, true, false, true}));
    EXPECT_EQ(settle({"Profile 1 (Profile 1)"}), std::vector<std::string>{});
    EXPECT_EQ(selected(), (std::vector<bool>{false, true, false, false}));
}

TEST_F(ProfileNames, whatNoBrowserHasIsToldWithASuggestionAndSelectsNothing) {
    EXPECT_EQ(settle({"Wrok", "nothing like it"}),
              (std::vector<std::string>{
                  "no selected browser has the profile 'Wrok'; did you mean 'Work'?",
                  "no selected browser has the profile 'nothing like it'; 'browsersweep profiles' "
                  "lists them"}));
    EXPECT_EQ(selected(), (std::vector<bool>{false, false, false, false}));
}

TEST_F(ProfileNames, nothingIsReadWhereNoProfileIsNamed) {
    EXPECT_EQ(settleProfiles(selection_,
                             [](Browser) -> std::unique_ptr<const BrowserCleaner> {
                                 throw std::logic_error("asked for a browser");
                             },
                             {}),
              std::vector<std::string>{});
    EXPECT_EQ(selected(), (std::vector<bool>{true, true, true, true}));
}

}  // namespace
}  // namespace browsersweep::cli
