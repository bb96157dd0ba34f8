#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace browsersweep {

/**
 * The bytes of a file without a name, kept in memory up to a bound: what SQLite puts aside while it
 * works never reaches a disk, where it could be read by others or find no room.
 */
class MemoryFile {
public:
    /** Enough for the row numbers of 20 million visits; what wants more does so on purpose. */
    static constexpr std::uint64_t capacity = std::uint64_t{256} << 20;

    /** Copies what is there; the rest becomes zeros. False where there was a rest. */
    bool read(std::span<std::byte> into, std::uint64_t offset) const noexcept;

    /** Puts bytes anywhere; a gap becomes zeros. False beyond the capacity. May throw bad_alloc. */
    bool write(std::span<const std::byte> from, std::uint64_t offset);

    /** Cuts to a size; a greater one changes nothing. */
    void truncate(std::uint64_t size) noexcept;

    /** In bytes. */
    std::uint64_t size() const noexcept { return bytes_.size(); }

private:
    std::vector<std::byte> bytes_;
};

}  // namespace browsersweep
