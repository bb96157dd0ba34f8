#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** How a text is stored as bytes. Texts in memory are UTF-8. */
enum class StringEncoding { ascii, utf8, isoLatin1 };

/** The encoding's name, such as "ASCII". */
BROWSERSWEEP_EXPORT std::string_view displayName(StringEncoding encoding) noexcept;

/** The text that the bytes stand for; nothing where they are not valid in the encoding. */
BROWSERSWEEP_EXPORT std::optional<std::string> decodedText(std::span<const std::uint8_t> bytes,
                                                           StringEncoding encoding);

/** The bytes of a text; nothing where the encoding cannot represent it, or it is no UTF-8. */
BROWSERSWEEP_EXPORT std::optional<std::string> encodedText(std::string_view text,
                                                           StringEncoding encoding);

}  // namespace browsersweep
