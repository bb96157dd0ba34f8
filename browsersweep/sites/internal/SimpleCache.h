#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "browsersweep/base/Date.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/KeyMemory.h"

namespace browsersweep {

/** One file of a cache that keeps every entry in files of its own. */
struct SimpleCacheFile {
    std::string name;                ///< 16 hexadecimal digits, "_" and which part
    std::optional<std::string> key;  ///< what the entry is for; absent where the file has none
    std::uint64_t size = 0;          ///< in bytes
    std::optional<Date> modified;    ///< when it was last written
};

/**
 * The folder of a cache in Chromium's "simple" format: files that begin with their entry's key, and
 * an index that the browser makes anew where it is missing. In the older format some large files
 * hold parts of many entries, and nothing can be taken out.
 */
class SimpleCache {
public:
    /** With a memory, which may be null, a key that was read is not read again. */
    SimpleCache(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager,
                std::shared_ptr<KeyMemory> memory = nullptr);

    /** Where it lies. */
    const std::filesystem::path& folder() const noexcept { return folder_; }

    /** The index, which has a digest of each key, and which the browser makes anew. */
    std::filesystem::path index() const { return folder_ / "index-dir" / "the-real-index"; }

    /** Visits the files of all entries, in no certain order. False, and no visit, where files of
     * the older format are there. Throws `filesystem_error` and what the control throws. */
    bool visit(const std::function<void(SimpleCacheFile&&)>& visit) const;

    /** Deletes files by their names and, if there are any, the index. Throws as above. */
    void remove(const std::set<std::string, std::less<>>& names) const;

private:
    std::optional<std::string> keyOf(const FolderEntry& entry, Date beforeListing) const;

    std::filesystem::path folder_;
    std::shared_ptr<const FileManager> fileManager_;
    std::shared_ptr<KeyMemory> memory_;
};

}  // namespace browsersweep
