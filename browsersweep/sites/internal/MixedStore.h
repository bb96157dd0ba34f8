#pragma once

#include <filesystem>
#include <memory>
#include <set>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** One file or folder that tells no site apart. */
struct MixedRow {
    std::string_view path;  ///< below the profile's folder or its cache
    TraceKind kind = TraceKind::history;
    std::string_view meaning;  ///< what may stand there, and what removing it costs, for people
    /** It is a database of LevelDB: single records that name a site can be left out. */
    bool isOfRecords = false;
    /** Nobody needs it any more: it goes with any site. */
    bool isOfNoUse = false;
};

/** A file or folder that goes as a whole, or stays. */
class MixedStore : public TraceStore {
public:
    MixedStore(const MixedRow& row, const std::filesystem::path& folder,
               std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return path_; }
    std::set<TraceKind> kinds() const override { return {row_.kind}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    void removeRecords(const SiteSelection& selection) const;

    MixedRow row_;
    std::filesystem::path path_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
