#pragma once

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace browsersweep {

/** Whether a type is one of those listed. */
template <typename T, typename... Types>
concept OneOf = (std::same_as<T, Types> || ...);

/** The types that stand for characters and truth, which are no numbers here. */
template <typename T>
concept NoNumber = OneOf<T, bool, char, wchar_t, char8_t, char16_t, char32_t>;

/** Integers of 8 to 64 bits, signed or not. */
template <typename T>
concept BinaryInteger = std::integral<T> && !NoNumber<T> && sizeof(T) <= sizeof(std::uint64_t);

/** Floating-point numbers of 32 and 64 bits in the IEEE format. */
template <typename T>
concept BinaryFloatingPoint = OneOf<T, float, double> && std::numeric_limits<T>::is_iec559;

/** Numbers that are stored as they are, in little-endian order. */
template <typename T>
concept BinaryNumber = BinaryInteger<T> || BinaryFloatingPoint<T>;

/** The unsigned integer of so many bytes. */
template <std::size_t size>
using UnsignedOfSize = std::conditional_t<
    size == 1, std::uint8_t,
    std::conditional_t<size == 2, std::uint16_t,
                       std::conditional_t<size == 4, std::uint32_t, std::uint64_t>>>;

/** The bytes of a number in little-endian order. */
template <BinaryNumber T>
constexpr std::array<std::uint8_t, sizeof(T)> bytes(T value) noexcept {
    auto bits = std::uint64_t{std::bit_cast<UnsignedOfSize<sizeof(T)>>(value)};
    std::array<std::uint8_t, sizeof(T)> result{};
    for (std::uint8_t& byte : result) {
        byte = static_cast<std::uint8_t>(bits);
        bits >>= 8;
    }
    return result;
}

/** The number that little-endian bytes stand for; there must be as many as it has. */
template <BinaryNumber T>
constexpr T numberFromBytes(const std::uint8_t* first) noexcept {
    std::uint64_t bits = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : std::span<const std::uint8_t, sizeof(T)>(first, sizeof(T))) {
        bits |= std::uint64_t{byte} << shift;
        shift += 8;
    }
    return std::bit_cast<T>(static_cast<UnsignedOfSize<sizeof(T)>>(bits));
}

}  // namespace browsersweep
