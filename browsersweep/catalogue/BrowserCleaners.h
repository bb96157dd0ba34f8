#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/home/Home.h"

/**
 * The whole library. `cleaner` is where to begin: it gives what one browser offers, from which come
 * profiles, bookmarks and data that can be measured and cleaned.
 */
namespace browsersweep {

/** The cleaner of any browser of the catalogue. */
class BROWSERSWEEP_EXPORT CatalogueCleaner : public BrowserCleaner {
public:
    std::string_view name() const noexcept override;
    std::string_view bundleIdentifier() const noexcept override;
    const BrowserProfileReader& profileReader() const noexcept override { return *profileReader_; }

protected:
    /** The browser's row of the catalogue, with a reader of its family. */
    CatalogueCleaner(Browser browser, Home home);

private:
    Browser browser_;
    std::shared_ptr<const BrowserProfileReader> profileReader_;
};

/** One type per browser. */
template <Browser browser>
class CleanerOf : public CatalogueCleaner {
public:
    /** In this home; a file manager alone serves for the files and for the user's directories. */
    explicit CleanerOf(Home home) : CatalogueCleaner(browser, std::move(home)) {}
};

// clang-format off
/** @{ */
/** The type that `cleaner` makes for one browser. */
using QuenbySecureBrowserCleaner   = CleanerOf<Browser::quenbySecureBrowser>;
using TarrowSecureBrowserCleaner   = CleanerOf<Browser::tarrowSecureBrowser>;
using BraveCleaner                 = CleanerOf<Browser::brave>;
using ChromiumCleaner              = CleanerOf<Browser::chromium>;
using FirefoxCleaner               = CleanerOf<Browser::firefox>;
using GoogleChromeCleaner          = CleanerOf<Browser::googleChrome>;
using MicrosoftEdgeCleaner         = CleanerOf<Browser::microsoftEdge>;
using OrvoBrowserCleaner           = CleanerOf<Browser::orvo>;
using BrellisPrivateBrowserCleaner = CleanerOf<Browser::brellisPrivateBrowser>;
using OperaCleaner                 = CleanerOf<Browser::opera>;
using SafariCleaner                = CleanerOf<Browser::safari>;
using VivaldiCleaner               = CleanerOf<Browser::vivaldi>;
using YandexBrowserCleaner         = CleanerOf<Browser::yandexBrowser>;
/** @} */
// clang-format on

/** A new cleaner of the browser's own type, for the data in this home. */
BROWSERSWEEP_EXPORT std::unique_ptr<const BrowserCleaner> cleaner(Browser browser, Home home);

/** The same for the current user's own data, through the process-wide default file manager. */
BROWSERSWEEP_EXPORT std::unique_ptr<const BrowserCleaner> cleaner(Browser browser);

}  // namespace browsersweep
