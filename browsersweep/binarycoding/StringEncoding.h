#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** How a text is stored as bytes. Texts in memory are UTF-8. */
enum class StringEncoding {
    ascii,      ///< 7 bits; anything above is an error
    utf8,       ///< well-formed UTF-8 only
    isoLatin1,  ///< ISO 8859-1: every byte is a character
};

/** The encoding's name, such as "ASCII". */
BROWSERSWEEP_EXPORT std::string_view displayName(StringEncoding encoding) noexcept;

/** The text that the bytes encode, or `std::nullopt` if they are not valid in the encoding. */
BROWSERSWEEP_EXPORT std::optional<std::string> decodedText(std::span<const std::uint8_t> bytes,
                                                           StringEncoding encoding);

/** The bytes of a text, or `std::nullopt` if the encoding cannot represent it or it is not UTF-8.
 */
BROWSERSWEEP_EXPORT std::optional<std::string> encodedText(std::string_view text,
                                                           StringEncoding encoding);

}  // namespace browsersweep
