#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "browsersweep/c/browsersweep.h"

// Structures of the C interface grow at their end: neither side reads or writes what the other
// does not know.

namespace browsersweep::c {

/** What callers compiled with the first version of a structure know of it: up to its last field. */
constexpr std::size_t firstSize(const browsersweep_patterns& /*of*/) noexcept {
    return offsetof(browsersweep_patterns, count) + sizeof(std::size_t);
}
constexpr std::size_t firstSize(const browsersweep_dates& /*of*/) noexcept {
    return offsetof(browsersweep_dates, end_date) + sizeof(double);
}
constexpr std::size_t firstSize(const browsersweep_size& /*of*/) noexcept {
    return offsetof(browsersweep_size, bytes_are_approximate) + sizeof(bool);
}
constexpr std::size_t firstSize(const browsersweep_entry& /*of*/) noexcept {
    return offsetof(browsersweep_entry, is_unseen) + sizeof(bool);
}

/** How much of a structure both sides know. Throws `std::invalid_argument` if that is too little.
 */
template <typename Structure>
std::size_t commonSize(const Structure& theirs) {
    if (theirs.struct_size < firstSize(theirs)) {
        throw std::invalid_argument("the struct_size of a structure is not set to its size");
    }
    return std::min(theirs.struct_size, sizeof(Structure));
}

/** What a caller gives, as far as both sides know it. The rest is zero. */
template <typename Structure>
Structure taken(const Structure& theirs) {
    Structure ours{};
    std::memcpy(&ours, &theirs, commonSize(theirs));
    return ours;
}

/** Gives a caller as much as it knows of. */
template <typename Structure>
void give(Structure& theirs, Structure ours) {
    const std::size_t size = commonSize(theirs);
    ours.struct_size = theirs.struct_size;
    std::memcpy(&theirs, &ours, size);
}

}  // namespace browsersweep::c
