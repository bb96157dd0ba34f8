#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/Date.h"

namespace browsersweep {

/**
 * A value of a property list: a scalar, an array or a dictionary. It never changes once made, and
 * copies share their contents, so copying is cheap. Dictionaries keep the order of their entries.
 */
class BROWSERSWEEP_EXPORT PropertyList {
public:
    /** The types that a value can have. */
    enum class Kind {
        boolean,     ///< true or false
        integer,     ///< from -2^63 to 2^64-1
        real,        ///< a double
        string,      ///< a text in UTF-8
        date,        ///< a point in time
        data,        ///< bytes
        array,       ///< values in their order
        dictionary,  ///< values by key
        uid,         ///< a reference within a keyed archive; only the binary form has it
    };

    struct Entry;
    using Array = std::vector<PropertyList>;  ///< the values of an array
    using Dictionary = std::vector<Entry>;    ///< keys and values in the order of the file

    /** How many arrays and dictionaries may lie within each other, as on macOS. */
    static constexpr std::size_t maximumDepth = 512;

    /**
     * Reads a property list in any of the three forms: binary, XML or old-style text. Text is in
     * UTF-8 or, with a byte order mark, in UTF-16. Time and memory are bounded by the length of the
     * input, whatever it holds: XML and old-style text take less than eight times their length.
     * Throws a `DecodingError` of the kind `dataCorrupted` for everything that is no property list,
     * is nested too deeply, or holds text that is no Unicode (a lone surrogate, for example); and
     * for an old-style text of many values that has less than 64 bytes for each.
     */
    static PropertyList parse(BytesView bytes);

    /** True or false. */
    static PropertyList boolean(bool value);
    /** A whole number, negative or not. */
    static PropertyList integer(std::int64_t value);
    /** A whole number, which may be above 2^63-1. A smaller one equals the `integer`. */
    static PropertyList unsignedInteger(std::uint64_t value);
    /** A number of any double, infinities and NaN included. */
    static PropertyList real(double value);
    /** A text in UTF-8. Throws `std::invalid_argument` where it is not. */
    static PropertyList string(std::string value);
    /** A point in time, kept bit for bit. */
    static PropertyList date(Date value);
    /** Bytes that mean nothing here. */
    static PropertyList data(Bytes value);
    /** Throws `std::length_error` where the result would be deeper than `maximumDepth`. */
    static PropertyList array(Array values);
    /** Throws as `array` and `string` do; keys are texts. */
    static PropertyList dictionary(Dictionary entries);
    /** A reference within a keyed archive. */
    static PropertyList uid(std::uint64_t value);

    /** Which of the `as...` gives the value. */
    Kind kind() const noexcept;

    /** How many arrays and dictionaries lie within each other: 0 for a scalar. */
    std::size_t depth() const noexcept;

    /** @{ */
    /**
     * The value where it is of that kind, otherwise nothing. What the pointers lead to lives as
     * long as this value or any copy of it. `asInteger` gives nothing for an integer above 2^63-1,
     * `asUnsignedInteger` nothing for a negative one.
     */
    std::optional<bool> asBoolean() const noexcept;
    std::optional<std::int64_t> asInteger() const noexcept;
    std::optional<std::uint64_t> asUnsignedInteger() const noexcept;
    std::optional<double> asReal() const noexcept;
    const std::string* asString() const noexcept;
    std::optional<Date> asDate() const noexcept;
    const Bytes* asData() const noexcept;
    const Array* asArray() const noexcept;
    const Dictionary* asDictionary() const noexcept;
    std::optional<std::uint64_t> asUID() const noexcept;
    /** @} */

    /** The value of a key; null where there is none, or where this is no dictionary. Of equal keys
     * the last one counts. */
    const PropertyList* find(std::string_view key) const noexcept;

    /**
     * The value in binary form. A property list that the platform wrote in this form, read and
     * written again, gives back its bytes: the order of keys is kept, and equal texts, numbers,
     * dates and data are stored once. Reals always take eight bytes.
     */
    Bytes binaryData() const;

    /**
     * The value in the form that other bytes have: binary where they are a binary property list,
     * otherwise XML as the platform writes it. The order of keys is kept. XML tells dates to the
     * second, and has no word for references within an archive and for most control characters:
     * `std::invalid_argument` where the value holds any of these, or a date beyond its years.
     */
    Bytes dataLike(BytesView other) const;

    /**
     * Whether both are the same value of the same kind. Reals and dates are compared bit by bit,
     * and the order of a dictionary's entries counts: equal values have equal binary data.
     */
    friend BROWSERSWEEP_EXPORT bool operator==(const PropertyList& a,
                                               const PropertyList& b) noexcept;

private:
    struct Node;

    explicit PropertyList(std::shared_ptr<const Node> node) noexcept;

    std::shared_ptr<const Node> node_;
};

/** A key of a dictionary with its value. */
struct BROWSERSWEEP_EXPORT PropertyList::Entry {
    std::string key;     ///< a text in UTF-8
    PropertyList value;  ///< of any kind

    /** Whether key and value are equal, values as `PropertyList` compares them. */
    friend bool operator==(const Entry& a, const Entry& b) noexcept {
        return a.key == b.key && a.value == b.value;
    }
};

}  // namespace browsersweep
