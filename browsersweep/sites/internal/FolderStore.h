#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** Whose a folder is. */
struct FolderOwner {
    std::vector<std::string> hosts;  ///< none: nobody knows
    bool isBrowsersOwn = false;      ///< the browser's or an extension's: it always stays
};

/** A folder that holds one folder for each site, or several. */
struct FolderRow {
    /** Whose one of them is; absent where it is none of them, and stays. */
    using OwnerOf = std::optional<FolderOwner> (*)(const FileManager&,
                                                   const std::filesystem::path& parent,
                                                   const FolderEntry&);

    std::string_view path;  ///< below the profile's folder
    TraceKind kind = TraceKind::siteStorage;
    OwnerOf ownerOf = nullptr;
    std::string_view unknown;  ///< what those are whose owner nobody knows
};

/** Folders of sites as a store: each goes as a whole. */
class FolderStore : public TraceStore {
public:
    FolderStore(const FolderRow& row, const std::filesystem::path& profile,
                std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override { return {row_.kind}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    FolderRow row_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
