#include "cli/ProfileNames.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>

#include <fmt/format.h>

#include "cli/Suggestion.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using Profiles = std::vector<std::shared_ptr<const BrowserProfile>>;

Profiles profilesOf(const BrowserCleaner& cleaner) {
    try {
        return cleaner.profileReader().profiles();
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
            const auto& text = selection_.profileNames[i];
            const auto any = [&](const auto& isMeant) {
                return std::any_of(profiles.begin(), profiles.end(), isMeant);
            };
            const bool isName = any([&](const auto& profile) { return profile->name() == text; });
            if (!isName && any([&](const auto& profile) { return profile->folder() == text; })) {
                selection_.profileFolders.emplace_back(browser, text);
                isFound_[i] = true;
            }
            isFound_[i] = isFound_[i] || isName;
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
    Selection& selection_;
    std::vector<bool> isFound_;
    std::vector<std::string> known_;
};

}  // namespace

std::vector<std::string> settleProfiles(Selection& selection, const CleanerFactory& cleanerOf) {
    if (selection.profileNames.empty()) {
        return {};
    }
    Settlement settlement(selection);
    for (const Browser browser : selection.selectedBrowsers()) {
        settlement.look(browser, profilesOf(*cleanerOf(browser)));
    }
    return settlement.missingLines();
}

}  // namespace browsersweep::cli
