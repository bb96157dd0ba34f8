#include "browsersweep/catalogue/BrowserCleaners.h"

#include <array>
#include <cstddef>

#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"
#include "browsersweep/profiles/safari/SafariProfileReader.h"

namespace browsersweep {
namespace {

/** How a browser keeps its profiles. */
enum class Family { chromium, firefox, safari };

struct CatalogueRow {
    std::string_view bundleIdentifier;
    Family family;
    std::string_view applicationSupportRelativePath;  ///< of the Chromium family alone
};

// clang-format off
constexpr std::array<CatalogueRow, allBrowsers.size()> catalogue{{
    /* quenbySecureBrowser   */ {"com.quenby.browser",               Family::chromium, "Quenby/Browser"},
    /* tarrowSecureBrowser   */ {"com.tarrow.browser",               Family::chromium, "TARROW Software/Browser"},
    /* brave                 */ {"com.brave.Browser",                Family::chromium, "BraveSoftware/Brave-Browser"},
    /* chromium              */ {"org.chromium.Chromium",            Family::chromium, "Chromium"},
    /* firefox               */ {"org.mozilla.Firefox",              Family::firefox,  ""},
    /* googleChrome          */ {"com.google.Chrome",                Family::chromium, "Google/Chrome"},
    /* microsoftEdge         */ {"com.microsoft.edgemac",            Family::chromium, "Microsoft Edge"},
    /* orvo                  */ {"com.orvo.browser",                 Family::chromium, "Orvo"},
    /* brellisPrivateBrowser */ {"com.brellis.browser",              Family::chromium, "Brellis/Browser"},
    /* opera                 */ {"com.operasoftware.Opera",          Family::chromium, "com.operasoftware.Opera"},
    /* safari                */ {"com.apple.Safari",                 Family::safari,   ""},
    /* vivaldi               */ {"com.vivaldi.Vivaldi",              Family::chromium, "Vivaldi"},
    /* yandexBrowser         */ {"ru.yandex.desktop.yandex-browser", Family::chromium, "Yandex/YandexBrowser"},
}};
// clang-format on

const CatalogueRow& rowOf(Browser browser) noexcept {
    return catalogue[static_cast<std::size_t>(browser)];
}

std::shared_ptr<const BrowserProfileReader> makeReader(Browser browser, Home home) {
    const CatalogueRow& row = rowOf(browser);
    switch (row.family) {
        case Family::chromium:
            return std::make_shared<ChromiumBasedProfileReader>(row.applicationSupportRelativePath,
                                                                std::move(home), browser);
        case Family::firefox:
            return std::make_shared<FirefoxProfileReader>(std::move(home));
        case Family::safari:
            break;
    }
    return std::make_shared<SafariProfileReader>(std::move(home));
}

using Factory = std::unique_ptr<const BrowserCleaner> (*)(Home);

template <Browser browser>
std::unique_ptr<const BrowserCleaner> make(Home home) {
    return std::make_unique<CleanerOf<browser>>(std::move(home));
}

template <std::size_t... ordinals>
constexpr std::array<Factory, sizeof...(ordinals)> factories(
    std::index_sequence<ordinals...> /*all*/) {
    return {make<allBrowsers[ordinals]>...};
}

}  // namespace

CatalogueCleaner::CatalogueCleaner(Browser browser, Home home)
    : browser_(browser), profileReader_(makeReader(browser, std::move(home))) {}

std::string_view CatalogueCleaner::name() const noexcept {
    return displayName(browser_);
}

std::string_view CatalogueCleaner::bundleIdentifier() const noexcept {
    return rowOf(browser_).bundleIdentifier;
}

std::unique_ptr<const BrowserCleaner> cleaner(Browser browser, Home home) {
    static constexpr auto all = factories(std::make_index_sequence<allBrowsers.size()>());
    return all[static_cast<std::size_t>(browser)](std::move(home));
}

std::unique_ptr<const BrowserCleaner> cleaner(Browser browser) {
    return cleaner(browser, Home::current());
}

}  // namespace browsersweep
