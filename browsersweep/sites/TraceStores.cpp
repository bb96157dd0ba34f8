#include "browsersweep/sites/TraceStores.h"

#include "browsersweep/base/internal/BrowserTable.h"
#include "browsersweep/sites/chromium/internal/ChromiumStores.h"
#include "browsersweep/sites/firefox/internal/FirefoxDatabases.h"

namespace browsersweep {

TraceStores traceStores(const BrowserProfile& profile, const Home& home) {
    const auto folders = profile.folders();
    if (!folders) {
        return {};
    }
    switch (rowOf(profile.sourceBrowser()).family) {
        case BrowserFamily::chromium:
            return chromiumStores(*folders, home.fileManager());
        case BrowserFamily::firefox:
            return firefoxDatabaseStores(folders->data, home.fileManager());
        case BrowserFamily::safari:
            return {};
    }
    return {};
}

TraceStores traceStores(Browser browser, const Home& home) {
    const BrowserRow& row = rowOf(browser);
    if (row.family != BrowserFamily::chromium) {
        return {};
    }
    const auto folder =
        home.directoryProvider()->applicationSupportDirectory() / row.applicationSupportFolder;
    return sharedChromiumStores(folder, home.fileManager());
}

}  // namespace browsersweep
