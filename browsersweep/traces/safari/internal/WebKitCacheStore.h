#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/traces/safari/internal/WebKitCacheRecord.h"

namespace browsersweep {

/**
 * WebKit's network cache: a folder for each version of the format, with a file for each record, and
 * files with the contents of large ones, which several records may share. Everything is the folder
 * itself.
 */
class WebKitCacheStore : public TraceStore {
public:
    WebKitCacheStore(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return folder_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::cachedFiles}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    /** A file, the record that it is if it can be read, and what of the record lies beside it. */
    struct Entry {
        std::filesystem::path folder;
        FolderEntry file;
        std::optional<FolderEntry> blob;
        std::optional<WebKitCacheRecord> record;
        bool isWaste = false;  ///< a part of a record that is gone
    };
    using Visit = std::function<void(const Entry&)>;
    using Bodies = std::set<std::string, std::less<>>;
    struct Sorted;

    void visitVersions(const std::function<void(const std::filesystem::path&)>& visit) const;
    void visitEntries(const std::filesystem::path& version, const Visit& visit) const;
    static void noteBody(const Entry& entry, Bodies& bodies);
    void visitFolder(const std::filesystem::path& folder, const Visit& visit) const;
    bool seesAll(const std::filesystem::path& folder, int levels) const;
    bool isNamedIn(const Entry& entry, const SiteSelection& selection) const;
    bool isGoing(const Entry& entry, EntrySelector& selector, const SiteSelection& selection) const;
    std::vector<FolderEntry> bodiesBeyond(const std::filesystem::path& version,
                                          const Bodies& needed) const;
    void removeFrom(const std::filesystem::path& version, EntrySelector& selector,
                    const SiteSelection& selection) const;

    std::filesystem::path folder_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
