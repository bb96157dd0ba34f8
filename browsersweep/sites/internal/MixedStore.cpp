#include "browsersweep/sites/internal/MixedStore.h"

#include <string>
#include <utility>

#include "browsersweep/sites/internal/LevelDatabase.h"
#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {

MixedStore::MixedStore(const MixedRow& row, const std::filesystem::path& folder,
                       std::shared_ptr<const FileManager> fileManager)
    : row_(row), path_(folder / row.path), fileManager_(std::move(fileManager)) {}

TraceListing MixedStore::list(const KnownHosts& /*knownHosts*/) const {
    const CleanableDataSize size = sizeOfAll(*fileManager_, path_);
    if (size.byteCount.value == 0) {
        return {};  // such as a database that was never used
    }
    return {{}, {{row_.kind, path_, size, std::string(row_.meaning)}}};
}

void MixedStore::removeRecords(const SiteSelection& selection) const {
    const LevelDatabase database(path_, fileManager_);
    if (!database.exists()) {
        return;
    }
    const auto& sites = selection.sites();
    database.rewrite([&sites](std::string_view key, std::string_view value) {
        return !namesAny(key, sites) && !namesAny(value, sites);
    });
}

ForgetOutcome MixedStore::forget(const ForgetRequest& request) const {
    if (!request.takes(row_.kind)) {
        return {};
    }
    removeLeftBeside(*fileManager_, path_);
    if (row_.isOfNoUse || request.takesMixedOf(row_.kind)) {
        removeAll(*fileManager_, path_);
        return {};
    }
    if (row_.isOfRecords) {
        removeRecords(request.sites);
        return {};
    }
    if (sizeOfAll(*fileManager_, path_).byteCount.value == 0) {
        return {};
    }
    return {{{row_.kind, path_, std::string(row_.meaning)}}, true};
}

}  // namespace browsersweep
