#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/TraceTable.h"

namespace browsersweep {

/** The rules for WebKit's database of service workers. */
std::span<const TraceTable> serviceWorkerTables() noexcept;

/**
 * WebKit's folder of service workers: a database whose name has a version, so that an older one may
 * lie beside it, and their scripts in folders that are named by salted digests of their origins.
 */
class ServiceWorkerStore : public TraceStore {
public:
    ServiceWorkerStore(std::filesystem::path folder,
                       std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return folder_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::serviceWorkers}; }
    TraceListing list(const KnownHosts& knownHosts) const override;

    /** Scripts go first: those of rows that go, and where more than certain sites is meant also
     * those that no row knows. */
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    struct Worker;

    std::vector<std::filesystem::path> databases() const;
    std::vector<Worker> workersIn(const std::filesystem::path& database) const;
    void removeScripts(const ForgetRequest& request) const;

    std::filesystem::path folder_;
    std::shared_ptr<const FileManager> fileManager_;
};

/** The name of a folder of scripts: a digest of the folder's salt and of a text. */
std::string nameOfScriptFolder(const std::string& salt, const std::string& text);

}  // namespace browsersweep
