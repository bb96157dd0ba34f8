#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/FolderStore.h"

namespace browsersweep {

/** A folder with what one site keeps, alone or within another. */
struct OriginFolder {
    std::filesystem::path path;
    FolderOwner owner;
    std::vector<FolderEntry> entries;  ///< its data, each entry of a kind
};

/** How WebKit lays out the folders of sites. */
struct OriginLayout {
    /** All folders of sites below a folder. Throws `filesystem_error`. */
    std::vector<OriginFolder> (*find)(const FileManager& fileManager,
                                      const std::filesystem::path& root);
    /** The kind of an entry, by its name. */
    TraceKind (*kindOf)(std::string_view name);
    std::set<TraceKind> kinds;
};

/** Two levels of folders that are named by digests: the page's and the frame's. Each of the second
 * has a file that tells whose it is, and a folder for each way to keep data. */
OriginLayout layoutByOriginFile();

/** As WebKit had it before: folders named after origins, with those of frames within the pages'. */
OriginLayout layoutByName();

/**
 * What sites keep in folders of their own: each entry of one goes by itself, and the folder with
 * the last, so that what is left after an interruption still tells whose it is.
 */
class OriginStore : public TraceStore {
public:
    OriginStore(std::filesystem::path root, OriginLayout layout,
                std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return root_; }
    std::set<TraceKind> kinds() const override { return layout_.kinds; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::vector<OriginFolder> ofSites() const;
    void remove(const OriginFolder& folder, const ForgetRequest& request) const;
    void removeIfOver(const std::filesystem::path& folder) const;

    std::filesystem::path root_;
    OriginLayout layout_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
