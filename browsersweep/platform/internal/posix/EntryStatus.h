#pragma once

#include <cstdint>
#include <optional>

#include "browsersweep/base/Date.h"

namespace browsersweep::posix {

/** What one system call tells of a directory entry, links not followed. */
struct EntryStatus {
    bool isDirectory = false;
    std::uint64_t size = 0;
    std::optional<Date> creationDate;
};

/** What is wanted of an entry. Systems that ask for the date apart save the work without it. */
enum class StatusFields { kindAndSize, all };

/**
 * Examines an entry relative to its directory. `std::nullopt` if that fails; `errno` says why. One
 * implementation per system, since birth times have no common name.
 */
std::optional<EntryStatus> entryStatus(int directory, const char* name,
                                       StatusFields fields) noexcept;

}  // namespace browsersweep::posix
