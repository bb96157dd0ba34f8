#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/KeyMemory.h"

namespace browsersweep {

/**
 * Firefox's cache: a folder with one file for each response, which ends with its key, and an index
 * that Firefox makes anew where it is missing. Everything is the folder itself.
 */
class FirefoxCacheStore : public TraceStore {
public:
    /** With a memory, which may be null, a key that was read is not read again. */
    FirefoxCacheStore(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager,
                      std::shared_ptr<KeyMemory> memory = nullptr);

    std::filesystem::path path() const override { return folder_; }
    std::set<TraceKind> kinds() const override { return {TraceKind::cachedFiles}; }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;
    std::shared_ptr<const TraceStore> remembering() const override;

private:
    using Visit = std::function<void(const FolderEntry&, const std::string& key)>;

    std::string keyIn(const std::filesystem::path& file, std::uint64_t size) const;
    std::string keyOf(const FolderEntry& entry, Date beforeListing) const;
    void visitEntries(const Visit& visit) const;
    void removeWhatNobodyNeeds() const;

    std::filesystem::path folder_;
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<KeyMemory> memory_;
};

/**
 * How long the part of an entry's file is that follows its contents, by the file's last bytes and
 * its size; 0 where that is damaged, or longer than any real one.
 */
std::size_t lengthOfFirefoxCacheMetadata(BytesView lastBytes, std::uint64_t size);

/** The key of an entry, which stands in the part behind the contents; empty where it is damaged. */
std::string keyInFirefoxCacheMetadata(BytesView metadata);

/** Whose an entry is: the site that it is from, and the one in which it was loaded. */
std::vector<std::string> hostsInFirefoxCacheKey(const std::string& key);

}  // namespace browsersweep
