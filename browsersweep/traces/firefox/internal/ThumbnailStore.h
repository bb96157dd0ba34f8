#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/**
 * Firefox's pictures of pages: a file for each, named by a digest of the page's address. Whose one
 * is can be told for the pages of "places.sqlite" and for the first pages of known hosts, so it
 * must be asked before that database loses its rows.
 */
class ThumbnailStore : public TraceStore {
public:
    ThumbnailStore(std::filesystem::path folder, std::filesystem::path places,
                   std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return folder_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::predictions}; }
    bool needsKnownHosts() const noexcept override { return true; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    /** The host of the page that a file shows; none where nobody knows. */
    using HostsByFile = std::map<std::string, std::vector<std::string>, std::less<>>;

    HostsByFile hostsOf(const std::vector<FolderEntry>& files, const KnownHosts& knownHosts) const;

    std::filesystem::path folder_;
    std::filesystem::path places_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
