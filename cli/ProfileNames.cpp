#include "cli/ProfileNames.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>

#include <fmt/format.h>

#include "cli/ProfileLabels.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using Profiles = std::vector<std::shared_ptr<const BrowserProfile>>;

template <typename Read>
Profiles profilesOf(const Read& read) {
    try {
        return read();
    } catch (const std::exception&) {
        return {};
    }
}

std::string missing(std::string_view name, const std::vector<std::string>& known) {
    const auto line = fmt::format("no selected browser has the profile '{}'", printable(name));
    const auto meant = closest(name, {known.begin(), known.end()});
    return meant ? fmt::format("{}; did you mean '{}'?", line, printable(*meant))
                 : fmt::format("{}; 'browsersweep profiles' lists them", line);
}

/** Whether a text is what a profile of a shared name is called. */
bool isLabel(const std::string& text, const BrowserProfile& profile) {
    constexpr bool isNameShared = true;
    const auto name = profile.name();
    return name && labelOf(*name, profile.folder(), isNameShared) == text;
}

/** What each profile named in a selection means in one browser after the other. */
class Settlement {
public:
    explicit Settlement(Selection& selection)
        : selection_(selection), isFound_(selection.profileNames.size()) {}

    void look(Browser browser, const Profiles& profiles) {
        for (const auto& profile : profiles) {
            for (const auto& text : {profile->name(), profile->folder()}) {
                if (text) {
                    known_.push_back(*text);
                }
            }
        }
        for (std::size_t i = 0; i < isFound_.size(); ++i) {
            const bool isHere = settle(browser, profiles, selection_.profileNames[i]);
            isFound_[i] = isFound_[i] || isHere;
        }
    }

    std::vector<std::string> missingLines() const {
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < isFound_.size(); ++i) {
            if (!isFound_[i]) {
                lines.push_back(missing(selection_.profileNames[i], known_));
            }
        }
        return lines;
    }

private:
    /** Whether a text means profiles of the browser; those that it does not name by their folders.
     */
    bool settle(Browser browser, const Profiles& profiles, const std::string& text) {
        const auto isAny = [&profiles](const auto& isMeant) {
            return std::any_of(profiles.begin(), profiles.end(), isMeant);
        };
        if (isAny([&text](const auto& profile) { return profile->name() == text; })) {
            return true;
        }
        const bool isFolder =
            isAny([&text](const auto& profile) { return profile->folder() == text; });
        bool isFound = false;
        for (const auto& profile : profiles) {
            const auto folder = profile->folder();
            if (folder && (isFolder ? *folder == text : isLabel(text, *profile))) {
                selection_.profileFolders.emplace_back(browser, *folder);
                isFound = true;
            }
        }
        return isFound;
    }

    Selection& selection_;
    std::vector<bool> isFound_;
    std::vector<std::string> known_;
};

}  // namespace

std::vector<std::string> settleProfiles(Selection& selection, const CleanerFactory& cleanerOf,
                                        const ProfilesBeside& beside) {
    if (selection.profileNames.empty()) {
        return {};
    }
    Settlement settlement(selection);
    for (const Browser browser : selection.selectedBrowsers()) {
        auto profiles = profilesOf([&] { return cleanerOf(browser)->profileReader().profiles(); });
        const auto more = profilesOf([&] { return beside ? beside(browser) : Profiles(); });
        profiles.insert(profiles.end(), more.begin(), more.end());
        settlement.look(browser, profiles);
    }
    return settlement.missingLines();
}

}  // namespace browsersweep::cli
