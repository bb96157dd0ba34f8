#include "browsersweep/catalogue/BrowserCleaners.h"

#include <array>
#include <cstddef>

#include "browsersweep/base/internal/BrowserTable.h"
#include "browsersweep/profiles/chromium/ChromiumBasedProfileReader.h"
#include "browsersweep/profiles/firefox/FirefoxProfileReader.h"
#include "browsersweep/profiles/safari/SafariProfileReader.h"

namespace browsersweep {
namespace {

std::shared_ptr<const BrowserProfileReader> makeReader(Browser browser, Home home) {
    const BrowserRow& row = rowOf(browser);
    switch (row.family) {
        case BrowserFamily::chromium:
            return std::make_shared<ChromiumBasedProfileReader>(row.applicationSupportFolder,
                                                                std::move(home), browser);
        case BrowserFamily::firefox:
            return std::make_shared<FirefoxProfileReader>(std::move(home));
        case BrowserFamily::safari:
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
    return browsersweep::bundleIdentifier(browser_);
}

std::unique_ptr<const BrowserCleaner> cleaner(Browser browser, Home home) {
    static constexpr auto all = factories(std::make_index_sequence<allBrowsers.size()>());
    return all[static_cast<std::size_t>(browser)](std::move(home));
}

std::unique_ptr<const BrowserCleaner> cleaner(Browser browser) {
    return cleaner(browser, Home::current());
}

}  // namespace browsersweep
