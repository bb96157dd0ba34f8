#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace browsersweep {

/** @{ */
/**
 * The digests by which browsers write down hosts in place of their names. They serve to recognize
 * such a host, and nothing that must be secret or safe: no library that others must install, and
 * that leaves out the older one, is worth having for that.
 */
std::array<std::uint8_t, 32> sha256(std::string_view text);
std::array<std::uint8_t, 16> md5(std::string_view text);
/** @} */

/** The second of them in hexadecimal digits, with small letters. */
std::string md5InDigits(std::string_view text);

}  // namespace browsersweep
