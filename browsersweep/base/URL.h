#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * The address of a site. A value exists only if its text parsed; the text is kept as it was given.
 *
 * The rule is the platform's classic one: the text is not empty and holds nothing but the
 * characters that RFC 3986 allows, percent escapes of two hexadecimal digits, and at most one "#".
 * Scheme, host and port are not examined: "example.com", "*" and "[*.]example.com" are addresses.
 */
class BROWSERSWEEP_EXPORT URL {
public:
    /** The address, or nothing if the text does not parse as one. */
    static std::optional<URL> parse(std::string_view text);

    /** The text as it was given to `parse`. */
    const std::string& absoluteString() const noexcept { return text_; }

    /** Whether the texts are the same: nothing is normalised. */
    friend bool operator==(const URL&, const URL&) = default;

private:
    explicit URL(std::string text) noexcept : text_(std::move(text)) {}

    std::string text_;
};

}  // namespace browsersweep
