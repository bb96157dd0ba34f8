#include "browsersweep/base/Browser.h"

#include <algorithm>
#include <cstddef>

#include "browsersweep/base/internal/BrowserTable.h"

namespace browsersweep {
namespace {

using Family = BrowserFamily;

// The one place that says what a browser is. The tests hold what lies outside the library against
// it: completions, schemas, the manual page and the sample home.
// clang-format off
constexpr std::array<BrowserRow, allBrowsers.size()> browserTable{{
    // raw value, name, bundle identifier,
    //  family, folder in Application Support, process on macOS, processes elsewhere
    {"quenbySecureBrowser",   "Quenby Secure Browser",   "com.quenby.browser",
     Family::chromium, "Quenby/Browser",              "Quenby Secure Browser",   {}},
    {"tarrowSecureBrowser",   "Tarrow Secure Browser",   "com.tarrow.browser",
     Family::chromium, "TARROW Software/Browser",     "Tarrow Secure Browser",   {}},
    {"brave",                 "Brave Browser",           "com.brave.Browser",
     Family::chromium, "BraveSoftware/Brave-Browser", "Brave Browser",           {"brave"}},
    {"chromium",              "Chromium",                "org.chromium.Chromium",
     Family::chromium, "Chromium",                    "Chromium",                {"chromium", "chromium-browse"}},
    {"firefox",               "Firefox",                 "org.mozilla.Firefox",
     Family::firefox,  "Firefox",                     "firefox",                 {"firefox-esr", "firefox-bin"}},
    {"googleChrome",          "Google Chrome",           "com.google.Chrome",
     Family::chromium, "Google/Chrome",               "Google Chrome",           {"chrome"}},
    {"microsoftEdge",         "Microsoft Edge",          "com.microsoft.edgemac",
     Family::chromium, "Microsoft Edge",              "Microsoft Edge",          {"msedge"}},
    {"orvo",                  "Orvo",                    "com.orvo.browser",
     Family::chromium, "Orvo",                        "Orvo",                    {}},
    {"brellisPrivateBrowser", "Brellis Private Browser", "com.brellis.browser",
     Family::chromium, "Brellis/Browser",             "Brellis Private Browser", {}},
    {"opera",                 "Opera",                   "com.operasoftware.Opera",
     Family::chromium, "com.operasoftware.Opera",     "Opera",                   {"opera"}},
    {"safari",                "Safari",                  "com.apple.Safari",
     Family::safari,   "",                            "Safari",                  {}},
    {"vivaldi",               "Vivaldi",                 "com.vivaldi.Vivaldi",
     Family::chromium, "Vivaldi",                     "Vivaldi",                 {"vivaldi-bin"}},
    {"yandexBrowser",         "Yandex Browser",          "ru.yandex.desktop.yandex-browser",
     Family::chromium, "Yandex/YandexBrowser",        "Yandex",                  {"yandex_browser"}},
}};
// clang-format on

}  // namespace

const BrowserRow& rowOf(Browser browser) noexcept {
    return browserTable[static_cast<std::size_t>(browser)];
}

std::string_view rawValue(Browser browser) noexcept {
    return rowOf(browser).rawValue;
}

std::string_view displayName(Browser browser) noexcept {
    return rowOf(browser).displayName;
}

std::string_view bundleIdentifier(Browser browser) noexcept {
    return rowOf(browser).bundleIdentifier;
}

std::string_view applicationSupportFolder(Browser browser) noexcept {
    return rowOf(browser).applicationSupportFolder;
}

std::optional<Browser> browserFromRawValue(std::string_view text) noexcept {
    const auto* const found =
        std::find_if(allBrowsers.begin(), allBrowsers.end(),
                     [&](Browser browser) { return rawValue(browser) == text; });
    return found == allBrowsers.end() ? std::nullopt : std::optional(*found);
}

}  // namespace browsersweep
