#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/** Which of a number's bytes comes first. */
enum class ByteOrder {
    bigEndian,     ///< the highest
    littleEndian,  ///< the lowest
};

/** Whether the text is well-formed UTF-8: no overlong forms, no surrogates, nothing cut off. */
bool isUTF8(std::string_view text) noexcept;

/** Appends one code point, which must be a Unicode scalar value, in UTF-8. */
void appendUTF8(std::string& text, char32_t codePoint);

/** UTF-16 as UTF-8; nothing for an odd number of bytes or a surrogate without its other half. */
std::optional<std::string> utf8FromUTF16(BytesView bytes, ByteOrder order);

/** UTF-8, which must be well-formed, as UTF-16 with the big end first. */
Bytes utf16BigEndianFromUTF8(std::string_view text);

}  // namespace browsersweep
