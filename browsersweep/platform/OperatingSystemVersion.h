#pragma once

#include <compare>
#include <optional>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A version of macOS, such as 10.15.0. */
struct BROWSERSWEEP_EXPORT OperatingSystemVersion {
    int major = 0;  ///< such as 10 of 10.15.7
    int minor = 0;  ///< such as 15 of 10.15.7
    int patch = 0;  ///< such as 7 of 10.15.7

    /** The running system's. Where there is no macOS, one newer than any, as if it were current. */
    static OperatingSystemVersion current() noexcept;

    /**
     * The version that a text such as "10.15.7" or "14.1" names: one to three numbers between
     * points, of which those left out are 0. Nothing for any other text.
     */
    static std::optional<OperatingSystemVersion> parse(std::string_view text) noexcept;

    // NOLINTBEGIN(modernize-use-nullptr): clang-tidy 14 takes the defaulted comparison for a
    // pointer's
    /** The older version is less. */
    friend constexpr auto operator<=>(const OperatingSystemVersion& a,
                                      const OperatingSystemVersion& b) = default;
    // NOLINTEND(modernize-use-nullptr)
};

}  // namespace browsersweep
