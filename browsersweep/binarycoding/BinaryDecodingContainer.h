#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/AnyBufferedDataSource.h"
#include "browsersweep/binarycoding/BinaryDecoder.h"
#include "browsersweep/binarycoding/BinaryNumber.h"
#include "browsersweep/binarycoding/BinaryTypeName.h"
#include "browsersweep/binarycoding/BufferedData.h"
#include "browsersweep/binarycoding/RawRepresentation.h"
#include "browsersweep/binarycoding/StringEncoding.h"

namespace browsersweep {

template <typename T>
struct IsBinaryDecodable;

/**
 * A type that can be read from a decoder: one with a constructor that takes a `BinaryDecoder`, a
 * number, a type with a raw value, or a list of such types.
 */
template <typename T>
concept BinaryDecodable = IsBinaryDecodable<T>::value;

/** Whether a type is `BinaryDecodable`: what the concept asks. */
template <typename T>
struct IsBinaryDecodable : std::bool_constant<BinaryNumber<T> || RawRepresentable<T> ||
                                              std::constructible_from<T, const BinaryDecoder&>> {};

/** A list can be read where its elements can. */
template <typename Element>
struct IsBinaryDecodable<std::vector<Element>> : IsBinaryDecodable<Element> {};

/**
 * A position in bytes from which values are read one after the other, perhaps with a limit to how
 * many bytes may still be read. Every failure is a `BinaryDecodingError`, after which the position
 * is unspecified; errors of a source pass through.
 *
 * A container is used by reference. What it reads from, and the container it is nested in, must
 * outlive it.
 */
class BROWSERSWEEP_EXPORT BinaryDecodingContainer {
public:
    /** Reads from where the data stands, without a limit. Both must outlive it. */
    BinaryDecodingContainer(BufferedData& data, const BinaryUserInfo& userInfo) noexcept
        : data_(&data), userInfo_(&userInfo) {}
    BinaryDecodingContainer(const BinaryDecodingContainer&) = delete;
    BinaryDecodingContainer& operator=(const BinaryDecodingContainer&) = delete;
    ~BinaryDecodingContainer() = default;

    /** What it reads from; the position is the data's own. */
    BufferedData& bufferedData() const noexcept { return *data_; }

    /** How many bytes may still be read; absent where there is no limit. */
    std::optional<std::uint64_t> remainingLength() const noexcept { return remainingLength_; }

    /** A decoder at this position. */
    BinaryDecoder decoder() noexcept { return BinaryDecoder(*this); }
    /** What the caller handed to the `BinaryDataDecoder`. */
    const BinaryUserInfo& userInfo() const noexcept { return *userInfo_; }

    /** Reads one value. A list takes elements until this container is at its end. */
    template <BinaryDecodable T>
    T decode() {
        if constexpr (BinaryNumber<T>) {
            return decodeNumber<T>();
        } else if constexpr (RawRepresentable<T>) {
            return decodeRawRepresentable<T>();
        } else if constexpr (std::constructible_from<T, const BinaryDecoder&>) {
            return T(decoder());
        } else {
            T list;
            while (!isAtEnd()) {
                list.push_back(decode<typename T::value_type>());
            }
            return list;
        }
    }

    /** A text up to a terminator, which is read too. */
    std::string decodeString(StringEncoding encoding, std::uint8_t terminator);

    /** A text of everything that remains. */
    std::string decodeString(StringEncoding encoding);

    /** Exactly so many bytes. */
    std::vector<std::uint8_t> decode(std::uint64_t length);

    /** Everything that remains: up to the limit, or to the end of the data. */
    std::vector<std::uint8_t> decodeRemainder();

    /** The same without a copy; what is returned lives until the next call. */
    std::span<const std::uint8_t> takeRemainder();

    /**
     * As many numbers of one type, one after the other. It is the same as reading each by itself,
     * errors included, in a fraction of the time.
     */
    template <BinaryNumber T, std::size_t count>
    std::array<T, count> decodeNumbers() {
        const std::span<const std::uint8_t> piece = take(count * sizeof(T));
        if (piece.size() < count * sizeof(T)) {
            failForNumber(qualifiedTypeName<T>(), sizeof(T), piece.size() % sizeof(T));
        }
        std::array<T, count> numbers{};
        const std::uint8_t* next = piece.data();
        for (T& number : numbers) {
            number = numberFromBytes<T>(next);
            next += sizeof(T);
        }
        return numbers;
    }

    /** The next bytes without reading them; fewer where fewer remain. */
    std::vector<std::uint8_t> peek(std::uint64_t length);

    /** The same without a copy; what is returned lives until the next call. */
    std::span<const std::uint8_t> lookAhead(std::uint64_t length) {
        return data_->lookAhead(withinLimit(length));
    }

    /** The same, where having fewer is an error. */
    std::vector<std::uint8_t> peekExactly(std::uint64_t length);

    /**
     * A container that may read at most so many bytes (or, without a number, as many as this one).
     * It takes from this one exactly what it reads: what it leaves is read next here.
     */
    BinaryDecodingContainer nestedContainer(std::optional<std::uint64_t> maxLength = std::nullopt);

    /** Whether nothing remains: the limit is reached, or the data has ended. */
    bool isAtEnd();

private:
    // What a nested container reads from where its parent has a limit of its own: the parent.
    class NestedSource final : public AnyBufferedDataSource {
    public:
        explicit NestedSource(BinaryDecodingContainer& parent);

        // The callbacks would do. These spare a copy and an allocation for each number.
        std::optional<std::span<const std::uint8_t>> view(std::size_t length) override;
        std::optional<DelimitedBytes> viewUntil(std::uint8_t delimiter,
                                                std::size_t length) override;
        std::optional<std::span<const std::uint8_t>> lookAhead(std::size_t length) override;

    private:
        BinaryDecodingContainer* parent_;
    };

    BinaryDecodingContainer(BufferedData& data, std::optional<std::uint64_t> limit,
                            const BinaryUserInfo& userInfo) noexcept
        : data_(&data), remainingLength_(limit), userInfo_(&userInfo) {}
    BinaryDecodingContainer(BinaryDecodingContainer& parent, std::uint64_t limit);

    template <BinaryNumber T>
    T decodeNumber() {
        const std::span<const std::uint8_t> piece = take(sizeof(T));
        if (piece.size() < sizeof(T)) {
            failForNumber(qualifiedTypeName<T>(), sizeof(T), piece.size());
        }
        return numberFromBytes<T>(piece.data());
    }

    template <RawRepresentable T>
    T decodeRawRepresentable() {
        using RawValue = typename RawRepresentation<T>::RawValue;
        const RawValue raw = decodeRawValue<RawValue>();
        std::optional<T> value = RawRepresentation<T>::fromRawValue(raw);
        if (!value) {
            failForRawValue(qualifiedTypeName<T>(), qualifiedTypeName<RawValue>(), textOf(raw));
        }
        return *value;
    }

    template <typename RawValue>
    RawValue decodeRawValue() {
        if constexpr (BinaryNumber<RawValue>) {
            return decodeNumber<RawValue>();
        } else {
            return decodeString(StringEncoding::utf8);
        }
    }

    static std::string textOf(const std::string& raw) { return raw; }
    static std::string textOf(float raw);
    static std::string textOf(double raw);
    static std::string textOf(BinaryInteger auto raw) { return std::to_string(raw); }

    [[noreturn]] static void failForNumber(const std::string& type, std::size_t needed,
                                           std::size_t received);
    [[noreturn]] static void failForRawValue(const std::string& type, const std::string& rawType,
                                             const std::string& raw);

    std::span<const std::uint8_t> take(std::uint64_t length) {
        const std::span<const std::uint8_t> piece = data_->take(withinLimit(length));
        consume(piece.size());
        return piece;
    }
    DelimitedBytes takeUntil(std::uint8_t delimiter, std::uint64_t length);
    std::vector<std::uint8_t> nextBytes(std::size_t length);

    std::size_t withinLimit(std::uint64_t length) const noexcept {
        return static_cast<std::size_t>(std::min(length, remainingLength_.value_or(length)));
    }
    void consume(std::size_t count) noexcept {
        if (remainingLength_) {
            *remainingLength_ -= count;
        }
    }

    // Within the container, not on the heap: a file opens one for each of its records.
    std::optional<NestedSource> ownSource_;
    std::optional<BufferedData> ownData_;
    BufferedData* data_;
    std::optional<std::uint64_t> remainingLength_;
    const BinaryUserInfo* userInfo_;
};

/** The container of a `BinaryDataDecoder`. */
using BinaryDataDecodingContainer = BinaryDecodingContainer;

}  // namespace browsersweep
