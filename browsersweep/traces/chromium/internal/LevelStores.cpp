#include "browsersweep/traces/chromium/internal/LevelStores.h"

#include <array>

#include "browsersweep/sites/internal/LevelStore.h"
#include "browsersweep/traces/chromium/internal/LevelSchemas.h"

namespace browsersweep {
namespace {

// clang-format off
constexpr std::array levelRows{
    LevelRow{"Local Storage/leveldb", TraceKind::siteStorage, localStorageSchema, nullptr, {}},
    LevelRow{"Session Storage", TraceKind::siteStorage, sessionStorageSchema, nullptr, {}},
    LevelRow{"File System/Origins", TraceKind::siteStorage, fileSystemSchema, fileSystemFolders, {}},
    LevelRow{"Service Worker/Database", TraceKind::serviceWorkers, serviceWorkerSchema, serviceWorkerScripts, {}},
    LevelRow{"Platform Notifications", TraceKind::siteStorage, notificationSchema, nullptr, {}},
    LevelRow{"Site Characteristics Database", TraceKind::predictions, siteCharacteristicsSchema, nullptr,
             "what the browser has learned about sites, as hashes of hosts that no other store names"},
};
// clang-format on

}  // namespace

TraceStores levelStores(const ProfileFolders& folders,
                        const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const LevelRow& row : levelRows) {
        stores.push_back(std::make_shared<LevelStore>(row, folders.data, fileManager));
    }
    return stores;
}

}  // namespace browsersweep
