#pragma once

#include <concepts>
#include <cstdint>
#include <limits>

#include "browsersweep/Export.h"
#include "browsersweep/base/FatalError.h"

namespace browsersweep {

/** Integers of up to 64 bits; truth values are none. */
template <typename Number>
concept WholeNumber =
    std::integral<Number> && !std::same_as<Number, bool> && sizeof(Number) <= sizeof(std::int64_t);

/** How much data there is: how many items, and how many bytes they occupy. */
struct BROWSERSWEEP_EXPORT CleanableDataSize {
    /** A number, and whether it is known to be incomplete or estimated. */
    struct BROWSERSWEEP_EXPORT Measurement {
        std::int64_t value = 0;      ///< a difference may be negative
        bool isApproximate = false;  ///< estimated, or incomplete after an error

        constexpr Measurement() noexcept = default;
        /**
         * A whole number is an exact measurement, unless it is said to be approximate. One that
         * does not fit ends the process. Fractions and truth values are no measurements.
         */
        template <WholeNumber Number>
        constexpr Measurement(  // NOLINT(google-explicit-constructor)
            Number number, bool approximate = false) noexcept
            : value(fitting(number)), isApproximate(approximate) {}

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

    private:
        template <typename Number>
        static constexpr std::int64_t fitting(Number number) noexcept {
            if (number > 0 && static_cast<std::uint64_t>(number) > largest) {
                fatalError("a size does not fit in 63 bits");
            }
            return static_cast<std::int64_t>(number);
        }

        static constexpr auto largest =
            static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    };

    Measurement itemCount;  ///< entries, rows, files or cookies
    Measurement byteCount;  ///< what they occupy

    /** Nothing at all, exactly. */
    static const CleanableDataSize zero;

    /** The same numbers, both approximate. */
    constexpr CleanableDataSize approximate() const noexcept {
        return {{itemCount.value, true}, {byteCount.value, true}};
    }

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
