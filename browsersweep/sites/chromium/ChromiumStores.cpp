#include "browsersweep/sites/chromium/internal/ChromiumStores.h"

#include "browsersweep/sites/chromium/internal/ChromiumDatabases.h"

namespace browsersweep {

TraceStores chromiumStores(const ProfileFolders& folders,
                           const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores = databaseStores(folders.data, fileManager);
    return stores;
}

TraceStores sharedChromiumStores(const std::filesystem::path& browserFolder,
                                 const std::shared_ptr<const FileManager>& fileManager) {
    return sharedDatabaseStores(browserFolder, fileManager);
}

}  // namespace browsersweep
