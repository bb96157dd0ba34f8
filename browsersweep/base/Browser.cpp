#include "browsersweep/base/Browser.h"

#include <algorithm>
#include <cstddef>

namespace browsersweep {
namespace {

struct BrowserNames {
    std::string_view rawValue;
    std::string_view displayName;
};

// clang-format off
constexpr std::array<BrowserNames, allBrowsers.size()> names{{
    {"quenbySecureBrowser",   "Quenby Secure Browser"},
    {"tarrowSecureBrowser",   "Tarrow Secure Browser"},
    {"brave",                 "Brave Browser"},
    {"chromium",              "Chromium"},
    {"firefox",               "Firefox"},
    {"googleChrome",          "Google Chrome"},
    {"microsoftEdge",         "Microsoft Edge"},
    {"orvo",                  "Orvo"},
    {"brellisPrivateBrowser", "Brellis Private Browser"},
    {"opera",                 "Opera"},
    {"safari",                "Safari"},
    {"vivaldi",               "Vivaldi"},
    {"yandexBrowser",         "Yandex Browser"},
}};
// clang-format on

const BrowserNames& namesOf(Browser browser) noexcept {
    return names[static_cast<std::size_t>(browser)];
}

}  // namespace

std::string_view rawValue(Browser browser) noexcept {
    return namesOf(browser).rawValue;
}

std::string_view displayName(Browser browser) noexcept {
    return namesOf(browser).displayName;
}

std::optional<Browser> browserFromRawValue(std::string_view text) noexcept {
    const auto* const found =
        std::find_if(allBrowsers.begin(), allBrowsers.end(),
                     [&](Browser browser) { return rawValue(browser) == text; });
    return found == allBrowsers.end() ? std::nullopt : std::optional(*found);
}

}  // namespace browsersweep
