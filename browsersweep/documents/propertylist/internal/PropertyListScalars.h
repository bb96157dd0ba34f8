#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "browsersweep/base/Date.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

// The scalars of a property list in XML, from the text of their elements; `std::nullopt` if the
// text is not one. White space around numbers and dates is skipped.

/** A decimal integer with an optional sign, or a hexadecimal one, from -2^63 to 2^64-1. */
std::optional<PropertyList> integerFromText(std::string_view text);

/** A decimal number, or "nan", "inf" or "infinity" in any case, in any locale. */
std::optional<PropertyList> realFromText(std::string_view text);

/** A date such as 2001-01-01T00:00:00Z. */
std::optional<PropertyList> dateFromText(std::string_view text);

/** The text of a date, without its part of a second; nothing for one beyond the years 0 to 9999. */
std::optional<std::string> textOfDate(Date date);

/** Base 64 with white space anywhere. */
std::optional<PropertyList> dataFromBase64(std::string_view text);

/** Whether the text is empty or holds nothing but spaces, tabs and line ends. */
bool isOnlyWhiteSpace(std::string_view text) noexcept;

}  // namespace browsersweep
