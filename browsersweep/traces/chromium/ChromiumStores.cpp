#include "browsersweep/traces/chromium/internal/ChromiumStores.h"

#include "browsersweep/traces/chromium/internal/ChromiumDatabases.h"
#include "browsersweep/traces/chromium/internal/DocumentStores.h"
#include "browsersweep/traces/chromium/internal/FolderStores.h"
#include "browsersweep/traces/chromium/internal/LevelStores.h"

namespace browsersweep {

TraceStores chromiumStores(const ProfileFolders& folders,
                           const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores = databaseStores(folders.data, fileManager);
    for (const auto group : {levelStores, documentStores, folderStores}) {
        const TraceStores more = group(folders, fileManager);
        stores.insert(stores.end(), more.begin(), more.end());
    }
    return stores;
}

TraceStores sharedChromiumStores(const std::filesystem::path& browserFolder,
                                 const std::shared_ptr<const FileManager>& fileManager) {
    return sharedDatabaseStores(browserFolder, fileManager);
}

}  // namespace browsersweep
