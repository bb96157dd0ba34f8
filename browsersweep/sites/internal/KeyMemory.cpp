#include "browsersweep/sites/internal/KeyMemory.h"

#include <chrono>

namespace browsersweep {
namespace {

constexpr std::chrono::seconds longEnough{3};

bool isSettled(const FolderEntry& file, Date beforeListing) noexcept {
    return file.number != 0 && file.changed && *file.changed + longEnough <= beforeListing;
}

}  // namespace

bool KeyMemory::isUnchanged(const Known& known, const FolderEntry& file) noexcept {
    return known.size == file.size && known.modified == file.modified &&
           file.changed == known.changed;
}

// Another name of the same file has the same key.
KeyMemory::Key KeyMemory::keyOf(const FolderEntry& file, Date beforeListing,
                                const std::function<Key()>& read) {
    const auto found = known_.find(file.number);
    if (found != known_.end() && isUnchanged(found->second, file)) {
        const Known& known = found->second;
        return known.length ? Key(keys_.substr(known.place, *known.length)) : std::nullopt;
    }
    Key key = read();
    if (isSettled(file, beforeListing)) {
        const std::size_t place = keys_.size();
        keys_ += key.value_or("");
        const auto length = key ? std::optional(key->size()) : std::nullopt;
        known_.insert_or_assign(file.number,
                                Known{file.size, file.modified, *file.changed, place, length});
    }
    return key;
}

}  // namespace browsersweep
