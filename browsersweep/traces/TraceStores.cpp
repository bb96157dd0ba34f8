#include "browsersweep/traces/TraceStores.h"

#include "browsersweep/base/internal/BrowserTable.h"
#include "browsersweep/traces/chromium/internal/ChromiumStores.h"
#include "browsersweep/traces/firefox/internal/FirefoxDatabases.h"
#include "browsersweep/traces/firefox/internal/FirefoxFileStores.h"
#include "browsersweep/traces/safari/SafariNamedProfileReader.h"
#include "browsersweep/traces/safari/internal/SafariStores.h"

namespace browsersweep {
namespace {

TraceStores firefoxStores(const ProfileFolders& folders,
                          const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores = storesBeforeDatabases(folders, fileManager);
    for (const TraceStores& more : {firefoxDatabaseStores(folders.data, fileManager),
                                    firefoxFileStores(folders, fileManager)}) {
        stores.insert(stores.end(), more.begin(), more.end());
    }
    return stores;
}

}  // namespace

TraceStores traceStores(const BrowserProfile& profile, const Home& home) {
    const auto folders = profile.folders();
    if (!folders) {
        return {};
    }
    switch (rowOf(profile.sourceBrowser()).family) {
        case BrowserFamily::chromium:
            return chromiumStores(*folders, home.fileManager());
        case BrowserFamily::firefox:
            return firefoxStores(*folders, home.fileManager());
        case BrowserFamily::safari:
            return safariStores(profile, home);
    }
    return {};
}

TraceStores traceStores(Browser browser, const Home& home) {
    const BrowserRow& row = rowOf(browser);
    if (row.family == BrowserFamily::safari) {
        return sharedSafariStores(home);
    }
    if (row.family == BrowserFamily::firefox) {
        return {};
    }
    const auto folder =
        home.directoryProvider()->applicationSupportDirectory() / row.applicationSupportFolder;
    return sharedChromiumStores(folder, home.fileManager());
}

std::vector<std::shared_ptr<const BrowserProfile>> profilesBeside(Browser browser,
                                                                  const Home& home) {
    if (rowOf(browser).family != BrowserFamily::safari) {
        return {};
    }
    return SafariNamedProfileReader(home).profiles();
}

}  // namespace browsersweep
