#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BinaryEncoder.h"
#include "browsersweep/binarycoding/BinaryNumber.h"
#include "browsersweep/binarycoding/RawRepresentation.h"
#include "browsersweep/binarycoding/StringEncoding.h"

namespace browsersweep {

/** A type with a member function `encode` that takes a `BinaryEncoder`. */
template <typename T>
concept EncodesItself = requires(const T& value, const BinaryEncoder& encoder) {
    // What it returns does not matter.
    value.encode(encoder);
};

/** Whether a type is `BinaryEncodable`: what the concept asks. */
template <typename T>
struct IsBinaryEncodable
    : std::bool_constant<BinaryNumber<T> || RawRepresentable<T> || EncodesItself<T>> {};

/** A list can be written where its elements can. */
template <typename Element>
struct IsBinaryEncodable<std::vector<Element>> : IsBinaryEncodable<Element> {};

/**
 * A value that can be written to an encoder: one with an `encode` that takes a `BinaryEncoder`, a
 * number, a type with a raw value, or a list of such values.
 */
template <typename T>
concept BinaryEncodable = IsBinaryEncodable<T>::value;

/** Appends values to the output one after the other. */
class BROWSERSWEEP_EXPORT BinaryEncodingContainer {
public:
    /** Appends to the storage, which must outlive it; types are given the encoder. */
    BinaryEncodingContainer(BinaryDataEncoderStorage& storage, BinaryEncoder encoder) noexcept
        : storage_(&storage), encoder_(encoder) {}

    /** The output with all that was written to it, by whichever container. */
    BinaryDataEncoderStorage& storage() const noexcept { return *storage_; }
    /** What types that write themselves are given. */
    const BinaryEncoder& encoder() const noexcept { return encoder_; }

    /** Writes one value. A list is its elements in order, without a count or separators. */
    template <BinaryEncodable T>
    void encode(const T& value) {
        if constexpr (BinaryNumber<T>) {
            append(bytes(value));
        } else if constexpr (RawRepresentable<T>) {
            encodeRawValue(RawRepresentation<T>::rawValue(value));
        } else if constexpr (EncodesItself<T>) {
            value.encode(encoder_);
        } else {
            encodeContentsOf(value);
        }
    }

    /** Writes bytes as they are. */
    void encode(std::span<const std::uint8_t> data) { append(data); }

    /** Writes each element in order. */
    template <typename Elements>
    void encodeContentsOf(const Elements& elements) {
        for (const auto& element : elements) {
            encode(element);
        }
    }

    /**
     * Writes a text, and a terminator after it if there is one. A text that the encoding cannot
     * represent is a `BinaryEncodingError`.
     */
    void encodeString(std::string_view text, StringEncoding encoding,
                      std::optional<std::uint8_t> terminator = std::nullopt);

private:
    template <typename RawValue>
    void encodeRawValue(const RawValue& raw) {
        if constexpr (BinaryNumber<RawValue>) {
            append(bytes(raw));
        } else {
            encodeString(raw, StringEncoding::utf8);
        }
    }

    void append(std::span<const std::uint8_t> data) {
        storage_->data.insert(storage_->data.end(), data.begin(), data.end());
    }

    BinaryDataEncoderStorage* storage_;
    BinaryEncoder encoder_;
};

/** The container of a `BinaryDataEncoder`. */
using BinaryDataEncodingContainer = BinaryEncodingContainer;

inline BinaryEncodingContainer BinaryEncoder::container() const noexcept {
    return {*storage_, *this};
}

}  // namespace browsersweep
