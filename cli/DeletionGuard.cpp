#include "cli/DeletionGuard.h"

#include <algorithm>
#include <exception>

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/hosting/RunningBrowsers.h"

namespace browsersweep::cli {
namespace {

std::string reasonOf(const RunningBrowser& found) {
    return found.program ? fmt::format("a program named '{}' is running", *found.program)
                         : "its data folder is locked";
}

}  // namespace

bool DeletionGuard::mayDelete() const {
    if (options_.force) {
        return true;
    }
    if (!isHomeOfUser()) {
        console_.note(
            "the home folder belongs to another user, whose links would be followed; nothing was "
            "deleted. Run as that user, or add --force.");
        return false;
    }
    bool isFree = true;
    const RunningBrowsers running(home_);
    for (const Browser browser : options_.selection.selectedBrowsers()) {
        const auto cleaner = cleanerOf_(browser);
        const auto found = running.find(browser);
        if (found && mustBeClosed(*cleaner)) {
            console_.note(fmt::format(
                "{} seems to be running ({}); nothing was deleted. Quit it, or add --force.",
                displayName(browser), reasonOf(*found)));
            isFree = false;
        }
    }
    return isFree;
}

std::optional<std::string> DeletionGuard::refusal(Browser browser) const {
    const bool isConcerned =
        options_.command == Command::forget || mustBeClosed(*cleanerOf_(browser));
    const auto found =
        options_.force || !isConcerned ? std::nullopt : RunningBrowsers(home_).find(browser);
    return found ? std::optional(fmt::format("it seems to be running ({}); quit it, or add --force",
                                             reasonOf(*found)))
                 : std::nullopt;
}

/** Whether what is selected of the browser can be deleted only while it is closed. */
bool DeletionGuard::mustBeClosed(const BrowserCleaner& cleaner) const {
    const auto isSelected = [this](const BrowserProfile& profile) {
        return options_.selection.includes(profile);
    };
    try {
        if (options_.command == Command::forget) {
            const auto profiles = cleaner.profileReader().profiles();
            // What all profiles share may be there without any of them.
            return profiles.empty() ||
                   std::any_of(profiles.begin(), profiles.end(),
                               [&](const auto& profile) { return isSelected(*profile); });
        }
        const auto data = cleaner.cleanableData(isSelected);
        return std::any_of(data.lists().begin(), data.lists().end(), [this](const auto& entry) {
            return options_.selection.includes(entry.first) &&
                   entry.second.requiresClosedBrowserToClean();
        });
    } catch (const std::exception&) {
        return false;  // nothing of it will be deleted either, and the report says why
    }
}

/** Whether the home folder, where it is there, is that of the user who runs the program. */
bool DeletionGuard::isHomeOfUser() const {
    struct stat status = {};
    return ::stat(home_.fileManager()->homeDirectory().c_str(), &status) != 0 ||
           status.st_uid == ::geteuid();
}

}  // namespace browsersweep::cli
