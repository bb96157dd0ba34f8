#include "browsersweep/sites/internal/FolderStore.h"

#include <string>
#include <utility>

#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {

FolderStore::FolderStore(const FolderRow& row, const std::filesystem::path& profile,
                         std::shared_ptr<const FileManager> fileManager)
    : row_(row), path_(profile / row.path), fileManager_(std::move(fileManager)) {}

TraceListing FolderStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    CleanableDataSize unknown;
    for (const FolderEntry& entry : fileManager_->entries(path_)) {
        const auto owner = row_.ownerOf(*fileManager_, path_, entry);
        if (!owner || owner->isBrowsersOwn) {
            continue;
        }
        const CleanableDataSize size = sizeOfAll(*fileManager_, path_, entry);
        collector.add(row_.kind, owner->hosts, size, entry.modified);
        if (owner->hosts.empty()) {
            unknown = unknown + size;
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (unknown.itemCount.value > 0) {
        listing.notBySite.push_back({row_.kind, path_, unknown, std::string(row_.unknown)});
    }
    return listing;
}

ForgetOutcome FolderStore::forget(const ForgetRequest& request) const {
    if (!request.takes(row_.kind)) {
        return {};
    }
    ForgetOutcome outcome;
    for (const FolderEntry& entry : fileManager_->entries(path_)) {
        const auto owner = row_.ownerOf(*fileManager_, path_, entry);
        if (!owner || owner->isBrowsersOwn) {
            continue;
        }
        EntrySelector selector(request, true);
        if (selector.selects(owner->hosts)) {
            removeAll(*fileManager_, path_, entry);
        } else if (selector.hasKeptUnknown()) {
            outcome.kept.push_back({row_.kind, path_ / entry.name, std::string(row_.unknown)});
        }
    }
    return outcome;
}

}  // namespace browsersweep
