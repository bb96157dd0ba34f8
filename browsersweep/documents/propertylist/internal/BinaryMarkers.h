#pragma once

#include <cstdint>

/**
 * The first byte of an object in a binary property list: its kind in the upper half, and below it a
 * detail, which is a count or the exponent of a length. docs/formats.md has the whole format.
 */
namespace browsersweep::marker {

// clang-format off
inline constexpr std::uint8_t simple     = 0x0;  ///< true or false, told by the detail
inline constexpr std::uint8_t integer    = 0x1;  ///< of 2^detail bytes
inline constexpr std::uint8_t real       = 0x2;  ///< of 2^detail bytes
inline constexpr std::uint8_t date       = 0x3;  ///< a real of eight bytes
inline constexpr std::uint8_t data       = 0x4;  ///< so many bytes
inline constexpr std::uint8_t asciiText  = 0x5;  ///< so many bytes
inline constexpr std::uint8_t utf16Text  = 0x6;  ///< so many units of two bytes
inline constexpr std::uint8_t uid        = 0x8;  ///< of detail + 1 bytes
inline constexpr std::uint8_t array      = 0xA;  ///< so many references
inline constexpr std::uint8_t dictionary = 0xD;  ///< so many references to keys, then to values
// clang-format on

/** @{ */
/** The details of the two truth values. */
inline constexpr unsigned falseDetail = 0x8;
inline constexpr unsigned trueDetail = 0x9;
/** @} */
/** The detail of a count that does not fit in it: an integer object with the count follows. */
inline constexpr unsigned countFollows = 0xF;
/** @{ */
/** The details of numbers of eight and of sixteen bytes: the exponents of two. */
inline constexpr unsigned eightBytes = 3;
inline constexpr unsigned sixteenBytes = 4;
/** @} */

/** The byte itself. */
constexpr std::uint8_t of(std::uint8_t kind, unsigned detail) noexcept {
    return static_cast<std::uint8_t>((unsigned{kind} << 4U) | detail);
}

}  // namespace browsersweep::marker
