#include "cli/RunningBrowsers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <utility>

#include "browsersweep/profiles/CurrentUserDirectoryProvider.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"

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

/** Firefox keeps a lock in every profile folder; the standard place of those is one folder. */
std::vector<std::filesystem::path> firefoxProfileFolders(const std::filesystem::path& support) {
    std::vector<std::filesystem::path> folders;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(support / "Firefox" / "Profiles", error), end;
         !error && entry != end; entry.increment(error)) {
        folders.push_back(entry->path());
    }
    return folders;
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
    const auto folders = browser == Browser::firefox ? firefoxProfileFolders(applicationSupport_)
                                                     : std::vector<std::filesystem::path>{};
    return std::any_of(folders.begin(), folders.end(), isHeldByFirefox);
}

}  // namespace browsersweep::cli
