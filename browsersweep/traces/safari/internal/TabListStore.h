#pragma once

#include <filesystem>
#include <memory>
#include <set>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/**
 * One of Safari's property lists of open or closed tabs. Everything is the file itself. What names
 * a site there and is no tab tells no site apart.
 */
class TabListStore : public TraceStore {
public:
    TabListStore(std::filesystem::path file, std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return file_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::openTabs}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::filesystem::path file_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
