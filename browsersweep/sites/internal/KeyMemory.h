#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include "browsersweep/base/Date.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/**
 * The keys of the files of one folder, for an operation that looks at them more than once: each is
 * read once, for as long as its file is unchanged.
 *
 * A key counts as long as all that a listing tells of the file is the same: its number, which a
 * file that takes its place has not, its size, and when it was written and changed, which nobody
 * can choose. Times are told in seconds, and by some disks in two: so a key is not kept of a file
 * that was changed only just before it was listed, for another change could leave no mark.
 */
class KeyMemory {
public:
    /** What a file is for; absent where it is damaged. */
    using Key = std::optional<std::string>;

    /**
     * The key of a file as it was listed: what is remembered, or what is read now. The date is one
     * from before the folder was listed. Throws what reading throws, and remembers nothing then.
     */
    Key keyOf(const FolderEntry& file, Date beforeListing, const std::function<Key()>& read);

private:
    /** A file, and where its key stands among all. There may be a million: no name is kept. */
    struct Known {
        std::uint64_t size = 0;
        std::optional<Date> modified;
        Date changed;
        std::size_t place = 0;
        std::optional<std::size_t> length;
    };

    static bool isUnchanged(const Known& known, const FolderEntry& file) noexcept;

    std::unordered_map<std::uint64_t, Known> known_;  // by the number of the file
    std::string keys_;
};

}  // namespace browsersweep
