#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/sites/internal/NestingBudget.h"

namespace browsersweep {

/**
 * The hosts of the web addresses that stand in bytes of which little is known: in the texts of a
 * binary property list and of those within it, and as plain text or UTF-16 in anything else. What
 * no property list can be read of counts as anything else. Throws a `DecodingError` where property
 * lists within property lists add up to too much.
 */
std::vector<std::string> hostsInBytes(std::string_view bytes);

/** The same of a value of a property list. */
std::vector<std::string> hostsInValue(const PropertyList& value);

/** The same as a part of a longer reading. */
std::vector<std::string> hostsInValue(const PropertyList& value, NestingBudget& budget);

/**
 * How many bytes stand before a binary property list: none, or the four of a version, as WebKit
 * has them. Absent where there is none.
 */
std::optional<std::size_t> placeOfPropertyList(std::string_view bytes) noexcept;

}  // namespace browsersweep
