#pragma once

#include <cstdint>

#include "browsersweep/Export.h"

namespace browsersweep {

/** How much data there is: how many items, and how many bytes they occupy. */
struct BROWSERSWEEP_EXPORT CleanableDataSize {
    /** A number, and whether it is known to be incomplete or estimated. */
    struct BROWSERSWEEP_EXPORT Measurement {
        std::int64_t value = 0;      ///< a difference may be negative
        bool isApproximate = false;  ///< estimated, or incomplete after an error

        constexpr Measurement() noexcept = default;
        /** A plain number is an exact measurement. */
        constexpr Measurement(
            std::int64_t exactValue) noexcept  // NOLINT(google-explicit-constructor)
            : value(exactValue) {}
        /** A number with what is known of it. */
        constexpr Measurement(std::int64_t number, bool approximate) noexcept
            : value(number), isApproximate(approximate) {}

        /** @{ */
        /**
         * Sum and difference. The result is approximate where one of the two is; subtracting never
         * makes it exact again. A value that does not fit ends the process.
         */
        friend BROWSERSWEEP_EXPORT Measurement operator+(Measurement a, Measurement b) noexcept;
        friend BROWSERSWEEP_EXPORT Measurement operator-(Measurement a, Measurement b) noexcept;
        /** @} */

        /** Whether all fields are equal. */
        friend constexpr bool operator==(const Measurement&, const Measurement&) = default;
    };

    Measurement itemCount;  ///< entries, rows, files or cookies
    Measurement byteCount;  ///< what they occupy

    /** Nothing at all, exactly. */
    static const CleanableDataSize zero;

    /** @{ */
    /** Field by field, as measurements do it. A difference may be negative. */
    friend BROWSERSWEEP_EXPORT CleanableDataSize operator+(const CleanableDataSize& a,
                                                           const CleanableDataSize& b) noexcept;
    friend BROWSERSWEEP_EXPORT CleanableDataSize operator-(const CleanableDataSize& a,
                                                           const CleanableDataSize& b) noexcept;
    /** @} */

    /** Whether all fields are equal. */
    friend constexpr bool operator==(const CleanableDataSize&, const CleanableDataSize&) = default;
};

inline constexpr CleanableDataSize CleanableDataSize::zero{};

}  // namespace browsersweep
