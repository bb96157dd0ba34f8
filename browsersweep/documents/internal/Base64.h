#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace browsersweep {

/** What a digit of base 64 stands for; absent for any other letter, "=" too. */
std::optional<std::uint32_t> base64Digit(char letter) noexcept;

/** Bytes as a text in base 64, with the padding at its end. */
std::string toBase64(std::string_view bytes);

/** The bytes that a text in base 64 stands for; what is no such text ends it. */
std::string fromBase64(std::string_view text);

}  // namespace browsersweep
