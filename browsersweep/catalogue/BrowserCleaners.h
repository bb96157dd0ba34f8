#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "browsersweep/Export.h"
#include "browsersweep/base/Browser.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/SystemServices.h"

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
    CatalogueCleaner(Browser browser, std::shared_ptr<const FileManager> fileManager,
                     SystemServices services);

private:
    Browser browser_;
    std::shared_ptr<const BrowserProfileReader> profileReader_;
};

/** One type per browser. */
template <Browser browser>
class CleanerOf : public CatalogueCleaner {
public:
    /** The file manager serves for the files and for the user's directories. */
    explicit CleanerOf(std::shared_ptr<const FileManager> fileManager,
                       SystemServices services = SystemServices::current())
        : CatalogueCleaner(browser, std::move(fileManager), std::move(services)) {}
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

/** A new cleaner of the browser's own type. */
BROWSERSWEEP_EXPORT std::unique_ptr<const BrowserCleaner> cleaner(
    Browser browser, std::shared_ptr<const FileManager> fileManager);

/**
 * The same with other services of the system, which Safari's data needs beside its files. A host
 * that acts on another home than the current user's puts in services that touch nothing of theirs.
 */
BROWSERSWEEP_EXPORT std::unique_ptr<const BrowserCleaner> cleaner(
    Browser browser, std::shared_ptr<const FileManager> fileManager, SystemServices services);

/** The same with the process-wide default file manager: the current user's own data. */
BROWSERSWEEP_EXPORT std::unique_ptr<const BrowserCleaner> cleaner(Browser browser);

}  // namespace browsersweep
