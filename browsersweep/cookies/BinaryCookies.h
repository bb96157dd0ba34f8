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
#include "browsersweep/base/Date.h"
#include "browsersweep/base/URL.h"
#include "browsersweep/binarycoding/BinaryDecoder.h"
#include "browsersweep/binarycoding/BinaryEncoder.h"
#include "browsersweep/cookies/OptionalText.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

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
            /** The field as the record stores it. */
            using RawValue = std::uint32_t;

            constexpr Flags() noexcept = default;
            /** The set of the bits that are 1. */
            constexpr explicit Flags(RawValue rawValue) noexcept : rawValue_(rawValue) {}
            /** What is in any of the sets. */
            constexpr Flags(std::initializer_list<Flags> members) noexcept {
                for (const Flags member : members) {
                    insert(member);
                }
            }
            /** As the constructor: every number is a set, so this is never absent. */
            static constexpr std::optional<Flags> fromRawValue(RawValue rawValue) noexcept {
                return Flags(rawValue);
            }

            /** The bits as a number. */
            constexpr RawValue rawValue() const noexcept { return rawValue_; }
            /** Whether no bit is set. */
            constexpr bool isEmpty() const noexcept { return rawValue_ == 0; }

            /** The bits of either set. */
            constexpr Flags unionWith(Flags other) const noexcept {
                return Flags(rawValue_ | other.rawValue_);
            }
            /** The bits of both sets. */
            constexpr Flags intersection(Flags other) const noexcept {
                return Flags(rawValue_ & other.rawValue_);
            }
            /** The bits of exactly one of the sets. */
            constexpr Flags symmetricDifference(Flags other) const noexcept {
                return Flags(rawValue_ ^ other.rawValue_);
            }
            /** Sets the bits of the other set. */
            constexpr void insert(Flags other) noexcept { rawValue_ |= other.rawValue_; }
            /** Clears the bits of the other set. */
            constexpr void remove(Flags other) noexcept { rawValue_ &= ~other.rawValue_; }

            /** Whether all bits of the other set are set. */
            constexpr bool contains(Flags other) const noexcept { return other.isSubset(*this); }
            /** Whether the other set has all bits of this one; equal sets count. */
            constexpr bool isSubset(Flags of) const noexcept { return intersection(of) == *this; }
            /** Whether this set has all bits of the other one; equal sets count. */
            constexpr bool isSuperset(Flags of) const noexcept { return of.isSubset(*this); }
            /** Whether the sets have no bit in common. */
            constexpr bool isDisjoint(Flags with) const noexcept {
                return intersection(with).isEmpty();
            }

            /** Whether the same bits are set. */
            friend constexpr bool operator==(const Flags&, const Flags&) = default;

        private:
            RawValue rawValue_ = 0;
        };

        std::uint32_t size = 0;              ///< of the whole record in bytes, as stored
        std::uint32_t version = 0;           ///< kept as it is
        Flags flags;                         ///< kept as they are
        std::uint32_t urlOffset = 0;         ///< of `urlString`
        std::uint32_t nameOffset = 0;        ///< of `name`
        std::uint32_t pathOffset = 0;        ///< of `path`
        std::uint32_t valueOffset = 0;       ///< of `value`
        std::uint32_t commentOffset = 0;     ///< of `comment`
        std::uint32_t commentURLOffset = 0;  ///< of `commentURLString`
        std::optional<std::uint16_t> port;   ///< absent where the record has none
        Date expirationDate;                 ///< when the cookie ends
        Date creationDate;                   ///< what filters of dates are compared with
        OptionalText comment;                ///< the site's remark on the cookie
        OptionalText commentURLString;       ///< where the site explains it
        std::string urlString;               ///< the domain that the cookie belongs to
        std::string name;                    ///< what the site finds it by
        std::string path;                    ///< the part of the site that gets it
        std::string value;                   ///< what the site stored

        Cookie() = default;
        /** Reads one record, the texts in the order of their offsets. */
        explicit Cookie(const BinaryDecoder& from);
        /** Writes the record with size and offsets as they are stored, changed texts or not. */
        void encode(const BinaryEncoder& to) const;

        /** The domain as an address, where it is one. */
        std::optional<URL> url() const { return URL::parse(urlString); }
        /** The comment's address, where there is one that parses. */
        std::optional<URL> commentURL() const;

        /** Whether all fields are equal, the stored size and offsets among them. */
        friend bool operator==(const Cookie&, const Cookie&) = default;
    };

    /** A run of cookies. */
    struct BROWSERSWEEP_EXPORT Page {
        std::vector<Cookie> cookies;  ///< in the order of the records

        Page() = default;
        /** Reads one page. What stands in it after the last record is left. */
        explicit Page(const BinaryDecoder& from);
        /** Writes the page with offsets computed from the sizes of its records. */
        void encode(const BinaryEncoder& to) const;

        /** Whether the cookies are equal and in the same order. */
        friend bool operator==(const Page&, const Page&) = default;
    };

    std::vector<Page> pages;  ///< in the order of the file
    PropertyList metadata;    ///< the property list at the end of the file

    /** No cookies, and an empty dictionary as metadata. */
    BinaryCookies();
    /** Reads a whole file. Its checksum is not examined. */
    explicit BinaryCookies(const BinaryDecoder& from);
    /** Writes a whole file with the sizes of its pages and its checksum computed. */
    void encode(const BinaryEncoder& to) const;

    /** The cookies of all pages in order. */
    std::vector<Cookie> cookies() const;
    /** How many cookies all pages have. */
    std::size_t cookieCount() const noexcept;
    /** Whether no page has a cookie. */
    bool isEmpty() const noexcept { return cookieCount() == 0; }

    /** Removes every cookie that the predicate is true for, and the pages that become empty. */
    template <typename Predicate>
    void remove(Predicate where) {
        std::for_each(pages.rbegin(), pages.rend(),
                      [&](Page& page) { std::erase_if(page.cookies, std::ref(where)); });
        std::erase_if(pages, [](const Page& page) { return page.cookies.empty(); });
    }

    /** Whether pages and metadata are equal. */
    friend bool operator==(const BinaryCookies&, const BinaryCookies&) = default;
};

}  // namespace browsersweep
