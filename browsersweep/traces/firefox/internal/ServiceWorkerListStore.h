#pragma once

#include <filesystem>
#include <memory>
#include <set>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/**
 * Firefox's list of service workers: a line with its version, then records of one line for each
 * field, the end of each a line with "#". What stays keeps every byte.
 */
class ServiceWorkerListStore : public TraceStore {
public:
    ServiceWorkerListStore(std::filesystem::path path,
                           std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::serviceWorkers}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
