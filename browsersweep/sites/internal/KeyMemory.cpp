#include "browsersweep/sites/internal/KeyMemory.h"

#include <chrono>

namespace browsersweep {
namespace {

constexpr std::chrono::seconds longEnough{3};

bool isSettled(const FolderEntry& file, Date beforeListing) noexcept {
    return file.number != 0 && file.changed && *file.changed + longEnough <= beforeListing;
}

}  // namespace

KeyMemory::Key KeyMemory::keyOf(const FolderEntry& file, Date beforeListing,
                                const std::function<Key()>& read) {
    const auto found = known_.find(file.name);
    if (found != known_.end() && found->second.file == file) {
        return found->second.key;
    }
    Key key = read();
    if (isSettled(file, beforeListing)) {
        known_.insert_or_assign(file.name, Known{file, key});
    }
    return key;
}

}  // namespace browsersweep
