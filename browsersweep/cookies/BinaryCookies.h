#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BinaryDecoder.h"
#include "browsersweep/binarycoding/BinaryEncoder.h"
#include "browsersweep/cookies/OptionalText.h"
#include "browsersweep/platform/Date.h"
#include "browsersweep/platform/PropertyList.h"
#include "browsersweep/platform/URL.h"

namespace browsersweep {

/**
 * The contents of Safari's cookie file. It is read, cookies are removed from it, and it is written
 * back. Reading follows the order of the records; where the file says they are does not count.
 *
 * Reading throws `BinaryDecodingError`, or `DecodingError` where the property list at the end does
 * not parse. Writing throws `BinaryEncodingError` for a text that is not ASCII, and
 * `std::length_error` where the sizes of a page's records do not add up to 32 bits.
 */
class BROWSERSWEEP_EXPORT BinaryCookies {
public:
    /** One cookie as it is stored. Offsets count from the start of the record; 0 means absent. */
    struct BROWSERSWEEP_EXPORT Cookie {
        /** A set of bits, of which none has a meaning here. All survive reading and writing. */
        class BROWSERSWEEP_EXPORT Flags {
        public:
            using RawValue = std::uint32_t;

            constexpr Flags() noexcept = default;
            constexpr explicit Flags(RawValue rawValue) noexcept : rawValue_(rawValue) {}
            constexpr Flags(std::initializer_list<Flags> members) noexcept {
                for (const Flags member : members) {
                    insert(member);
                }
            }
            static constexpr std::optional<Flags> fromRawValue(RawValue rawValue) noexcept {
                return Flags(rawValue);
            }

            constexpr RawValue rawValue() const noexcept { return rawValue_; }
            constexpr bool isEmpty() const noexcept { return rawValue_ == 0; }

            constexpr Flags unionWith(Flags other) const noexcept {
                return Flags(rawValue_ | other.rawValue_);
            }
            constexpr Flags intersection(Flags other) const noexcept {
                return Flags(rawValue_ & other.rawValue_);
            }
            constexpr Flags symmetricDifference(Flags other) const noexcept {
                return Flags(rawValue_ ^ other.rawValue_);
            }
            constexpr void insert(Flags other) noexcept { rawValue_ |= other.rawValue_; }
            constexpr void remove(Flags other) noexcept { rawValue_ &= ~other.rawValue_; }

            constexpr bool contains(Flags other) const noexcept { return other.isSubset(*this); }
            constexpr bool isSubset(Flags of) const noexcept { return intersection(of) == *this; }
            constexpr bool isSuperset(Flags of) const noexcept { return of.isSubset(*this); }
            constexpr bool isDisjoint(Flags with) const noexcept {
                return intersection(with).isEmpty();
            }

            friend constexpr bool operator==(const Flags&, const Flags&) = default;

        private:
            RawValue rawValue_ = 0;
        };

        std::uint32_t size = 0;  ///< of the whole record in bytes, as stored
        std::uint32_t version = 0;
        Flags flags;
        std::uint32_t urlOffset = 0;
        std::uint32_t nameOffset = 0;
        std::uint32_t pathOffset = 0;
        std::uint32_t valueOffset = 0;
        std::uint32_t commentOffset = 0;
        std::uint32_t commentURLOffset = 0;
        std::optional<std::uint16_t> port;
        Date expirationDate;
        Date creationDate;
        OptionalText comment;
        OptionalText commentURLString;
        std::string urlString;  ///< the domain that the cookie belongs to
        std::string name;
        std::string path;
        std::string value;

        Cookie() = default;
        explicit Cookie(const BinaryDecoder& from);
        void encode(const BinaryEncoder& to) const;

        /** The domain as an address, where it is one. */
        std::optional<URL> url() const { return URL::parse(urlString); }
        /** The comment's address, where there is one that parses. */
        std::optional<URL> commentURL() const;

        friend bool operator==(const Cookie&, const Cookie&) = default;
    };

    /** A run of cookies. */
    struct BROWSERSWEEP_EXPORT Page {
        std::vector<Cookie> cookies;  ///< in the order of the records

        Page() = default;
        explicit Page(const BinaryDecoder& from);
        void encode(const BinaryEncoder& to) const;

        friend bool operator==(const Page&, const Page&) = default;
    };

    std::vector<Page> pages;  ///< in the order of the file
    PropertyList metadata;    ///< the property list at the end of the file

    /** No cookies, and an empty dictionary as metadata. */
    BinaryCookies();
    explicit BinaryCookies(const BinaryDecoder& from);
    void encode(const BinaryEncoder& to) const;

    /** The cookies of all pages in order. */
    std::vector<Cookie> cookies() const;
    std::size_t cookieCount() const noexcept;
    bool isEmpty() const noexcept { return cookieCount() == 0; }

    /** Removes every cookie that the predicate is true for, and the pages that become empty. */
    template <typename Predicate>
    void remove(Predicate where) {
        std::for_each(pages.rbegin(), pages.rend(),
                      [&](Page& page) { std::erase_if(page.cookies, std::ref(where)); });
        std::erase_if(pages, [](const Page& page) { return page.cookies.empty(); });
    }

    friend bool operator==(const BinaryCookies&, const BinaryCookies&) = default;
};

}  // namespace browsersweep
