#include "browsersweep/sqlite/internal/MemoryFile.h"

#include <algorithm>

namespace browsersweep {

bool MemoryFile::read(std::span<std::byte> into, std::uint64_t offset) const noexcept {
    const std::uint64_t start = std::min<std::uint64_t>(offset, bytes_.size());
    const std::size_t count = std::min<std::uint64_t>(into.size(), bytes_.size() - start);
    const auto rest =
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(start), count, into.begin());
    std::fill(rest, into.end(), std::byte{});
    return count == into.size();
}

bool MemoryFile::write(std::span<const std::byte> from, std::uint64_t offset) {
    if (offset > capacity || from.size() > capacity - offset) {
        return false;
    }
    if (bytes_.size() < offset + from.size()) {
        bytes_.resize(offset + from.size());
    }
    std::copy(from.begin(), from.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
    return true;
}

void MemoryFile::truncate(std::uint64_t size) noexcept {
    if (size < bytes_.size()) {
        bytes_.erase(bytes_.begin() + static_cast<std::ptrdiff_t>(size), bytes_.end());
    }
}

}  // namespace browsersweep
