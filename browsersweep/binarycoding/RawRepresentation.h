#pragma once

#include <concepts>
#include <optional>
#include <string>

#include "browsersweep/binarycoding/BinaryNumber.h"

namespace browsersweep {

/**
 * How a type is made of a raw value: a number, or a text (UTF-8, everything that remains in the
 * container). The general form serves types, such as option sets, that have a `RawValue`, a
 * `rawValue()` and a static `fromRawValue` that returns an optional. An enumeration specialises it
 * with the same three as static members; its `rawValue` takes the case.
 */
template <typename T>
struct RawRepresentation;

/** A type that says itself what stands for a value. */
template <typename T>
concept TellsRawValue = requires(const T& value, typename T::RawValue raw) {
    { value.rawValue() } -> std::convertible_to<typename T::RawValue>;
    { T::fromRawValue(raw) } -> std::same_as<std::optional<T>>;
};

/** The general form: what the type itself says. */
template <TellsRawValue T>
struct RawRepresentation<T> {
    /** The number or text that stands for a value. */
    using RawValue = typename T::RawValue;
    /** What is written for a value. */
    static constexpr RawValue rawValue(const T& value) { return value.rawValue(); }
    /** The value read; nothing for a raw value that stands for none. */
    static constexpr std::optional<T> fromRawValue(RawValue raw) { return T::fromRawValue(raw); }
};

/** What can stand for a value: a number or a text. */
template <typename T>
concept NumberOrText = BinaryNumber<T> || std::same_as<T, std::string>;

/** Types that are read and written as their raw value. */
template <typename T>
concept RawRepresentable = requires(const T& value) {
    requires NumberOrText<typename RawRepresentation<T>::RawValue>;
    RawRepresentation<T>::rawValue(value);
    RawRepresentation<T>::fromRawValue(RawRepresentation<T>::rawValue(value));
};

}  // namespace browsersweep
