#include "cli/RunningBrowsers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <string_view>
#include <utility>

#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/firefox/FirefoxProfile.h"

#include "cli/Locks.h"

namespace browsersweep::cli {
namespace {

struct ProgramNames {
    std::string_view onMac;  ///< the name of the application's program
    std::array<std::string_view, 2> elsewhere;
};

// clang-format off
constexpr std::array<ProgramNames, allBrowsers.size()> programs{{
    /* quenbySecureBrowser   */ {"Quenby Secure Browser",   {}},
    /* tarrowSecureBrowser   */ {"Tarrow Secure Browser",   {}},
    /* brave                 */ {"Brave Browser",           {"brave"}},
    /* chromium              */ {"Chromium",                {"chromium", "chromium-browse"}},
    /* firefox               */ {"firefox",                 {"firefox-esr", "firefox-bin"}},
    /* googleChrome          */ {"Google Chrome",           {"chrome"}},
    /* microsoftEdge         */ {"Microsoft Edge",          {"msedge"}},
    /* orvo                  */ {"Orvo",                    {}},
    /* brellisPrivateBrowser */ {"Brellis Private Browser", {}},
    /* opera                 */ {"Opera",                   {"opera"}},
    /* safari                */ {"Safari",                  {}},
    /* vivaldi               */ {"Vivaldi",                 {"vivaldi-bin"}},
    /* yandexBrowser         */ {"Yandex",                  {"yandex_browser"}},
}};
// clang-format on

/** Firefox keeps a lock in every profile folder. */
bool isAnyProfileHeld(const BrowserCleaner& cleaner, const std::filesystem::path& support) {
    try {
        const auto profiles = cleaner.profileReader().profiles();
        return std::any_of(profiles.begin(), profiles.end(), [&support](const auto& profile) {
            const auto* const firefox = dynamic_cast<const FirefoxProfile*>(profile.get());
            return firefox != nullptr && isHeldByFirefox(support / firefox->path());
        });
    } catch (const std::exception&) {
        return false;  // no profile of it will be cleaned either, and the report says why
    }
}

}  // namespace

std::vector<std::string> programNamesOf(Browser browser) {
    const auto& row = programs[static_cast<std::size_t>(browser)];
    std::vector<std::string> names{std::string(row.onMac)};
    for (const auto name : row.elsewhere) {
        if (!name.empty()) {
            names.emplace_back(name);
        }
    }
    return names;
}

RunningBrowsers::RunningBrowsers(const FileManager& fileManager,
                                 std::vector<std::string> programNames)
    : applicationSupport_(
          fileManager.directories(SearchPathDirectory::applicationSupport).empty()
              ? fileManager.homeDirectory() / "Library/Application Support"
              : fileManager.directories(SearchPathDirectory::applicationSupport).front()),
      programNames_(std::move(programNames)) {}

std::optional<std::string> RunningBrowsers::reason(Browser browser,
                                                   const BrowserCleaner& cleaner) const {
    if (isDataHeld(browser, cleaner)) {
        return "its data folder is locked";
    }
    for (const auto& name : programNamesOf(browser)) {
        if (std::find(programNames_.begin(), programNames_.end(), name) != programNames_.end()) {
            return "a program named '" + name + "' is running";
        }
    }
    return std::nullopt;
}

bool RunningBrowsers::isDataHeld(Browser browser, const BrowserCleaner& cleaner) const {
    const auto* const chromium =
        dynamic_cast<const ChromiumBasedProfileReader*>(&cleaner.profileReader());
    if (chromium != nullptr) {
        return isHeldByChromium(applicationSupport_ / chromium->applicationSupportRelativePath());
    }
    return browser == Browser::firefox && isAnyProfileHeld(cleaner, applicationSupport_);
}

}  // namespace browsersweep::cli
