#include "browsersweep/traces/chromium/internal/FolderStores.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "browsersweep/sites/internal/CacheStore.h"
#include "browsersweep/sites/internal/FolderStore.h"
#include "browsersweep/sites/internal/MixedStore.h"
#include "browsersweep/sites/internal/ProtoFields.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

/** "https_www.example.com_0.indexeddb.leveldb", and ".blob" with its large values. */
std::optional<FolderOwner> ownerInName(const FileManager& /*fileManager*/,
                                       const fs::path& /*parent*/, const FolderEntry& entry) {
    const std::string_view name = entry.name;
    const auto end = name.find(".indexeddb.");
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view identifier = name.substr(0, end);
    return FolderOwner{hostsIn(SiteForm::originIdentifier, identifier), isBrowsersOwn(identifier)};
}

/** The folder's index is a message: first the names of the site's caches, then whose they are. */
std::optional<FolderOwner> ownerInIndex(const FileManager& fileManager, const fs::path& parent,
                                        const FolderEntry& entry) {
    constexpr std::size_t largestIndex = std::size_t{4} << 20;
    constexpr unsigned cacheField = 1;
    if (entry.kind != FolderEntry::Kind::folder) {
        return std::nullopt;
    }
    const Bytes index =
        firstBytesIfThere(fileManager, parent / entry.name / "index.txt", largestIndex);
    FolderOwner owner;
    for (const ProtoField& field : protoFields(textOf(index))) {
        if (field.number != cacheField) {
            const auto hosts = hostsIn(SiteForm::storageKey, field.content);
            owner.hosts.insert(owner.hosts.end(), hosts.begin(), hosts.end());
            owner.isBrowsersOwn = owner.isBrowsersOwn || isBrowsersOwn(field.content);
        }
    }
    return owner;
}

// clang-format off
constexpr std::array folderRows{
    FolderRow{"IndexedDB", TraceKind::siteStorage, ownerInName,
              "databases whose origin is not that of a site"},
    FolderRow{"Service Worker/CacheStorage", TraceKind::serviceWorkers, ownerInIndex,
              "caches whose index cannot be read; any site may have filled them"},
};

constexpr std::array mixedRows{
    MixedRow{"Sessions", TraceKind::openTabs,
             "open and recently closed tabs and windows of all sites; without this folder the browser cannot reopen any of them"},
    MixedRow{"Sessions_Encrypted", TraceKind::openTabs,
             "open and recently closed tabs and windows of all sites; without this folder the browser cannot reopen any of them"},
    MixedRow{"Visited Links", TraceKind::history,
             "hashes of visited addresses, by which visited links change colour; the browser rebuilds the file from the history"},
    MixedRow{"SCT Auditing Pending Reports", TraceKind::networkState,
             "reports on certificates of any site, waiting to be sent"},
    MixedRow{"BudgetDatabase", TraceKind::predictions,
             "how often sites may send messages in the background", true},
    MixedRow{"blob_storage", TraceKind::siteStorage,
             "data that pages of any site held while the browser was running"},
    MixedRow{"Download Service", TraceKind::downloads,
             "background downloads of any site that are in progress"},
    MixedRow{"shared_proto_db", TraceKind::predictions,
             "records of many parts of the browser, including addresses and files of downloads in progress", true},
};

/** Below the profile's folder for caches. */
constexpr std::array<std::string_view, 4> caches{
    "Cache/Cache_Data", "Code Cache/js", "Code Cache/wasm", "Code Cache/webui_js",
};

constexpr std::array mixedCaches{
    MixedRow{"Cache/No_Vary_Search", TraceKind::cachedFiles,
             "which addresses of any site may share a cached file"},
    MixedRow{"Media Cache", TraceKind::cachedFiles, "video and audio that any site played"},
};
// clang-format on

}  // namespace

TraceStores folderStores(const ProfileFolders& folders,
                         const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const FolderRow& row : folderRows) {
        stores.push_back(std::make_shared<FolderStore>(row, folders.data, fileManager));
    }
    for (const MixedRow& row : mixedRows) {
        stores.push_back(std::make_shared<MixedStore>(row, folders.data, fileManager));
    }
    for (const std::string_view cache : caches) {
        stores.push_back(std::make_shared<CacheStore>(folders.cache / cache, fileManager));
    }
    for (const MixedRow& row : mixedCaches) {
        stores.push_back(std::make_shared<MixedStore>(row, folders.cache, fileManager));
    }
    return stores;
}

}  // namespace browsersweep
