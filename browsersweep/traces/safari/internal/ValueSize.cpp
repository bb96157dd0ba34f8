#include "browsersweep/traces/safari/internal/ValueSize.h"

namespace browsersweep {
namespace {

/** Of an object: what tells its kind, where it stands, and the reference that leads to it. */
constexpr std::size_t perObject = 4;

/** Numbers and dates. */
constexpr std::size_t ofNumber = 8;

std::size_t sizeOfText(const std::string& text) noexcept {
    return perObject + text.size();
}

}  // namespace

// Recursive: a property list cannot be deeper than its limit.
std::size_t roughSize(const PropertyList& value) {
    std::size_t size = perObject;
    if (const auto* const text = value.asString()) {
        return sizeOfText(*text);
    }
    if (const auto* const data = value.asData()) {
        return size + data->size();
    }
    if (const auto* const values = value.asArray()) {
        for (const PropertyList& each : *values) {
            size += roughSize(each);
        }
        return size;
    }
    if (const auto* const entries = value.asDictionary()) {
        for (const PropertyList::Entry& entry : *entries) {
            size += sizeOfText(entry.key) + roughSize(entry.value);
        }
        return size;
    }
    return value.kind() == PropertyList::Kind::boolean ? size : size + ofNumber;
}

}  // namespace browsersweep
