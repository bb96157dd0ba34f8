#pragma once

#include <compare>

#include "browsersweep/Export.h"

namespace browsersweep {

/** A version of macOS, such as 10.15.0. */
struct BROWSERSWEEP_EXPORT OperatingSystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    /** The running system's. Where there is no macOS, one newer than any, as if it were current. */
    static OperatingSystemVersion current() noexcept;

    friend constexpr auto operator<=>(const OperatingSystemVersion&,
                                      const OperatingSystemVersion&) = default;
};

}  // namespace browsersweep
