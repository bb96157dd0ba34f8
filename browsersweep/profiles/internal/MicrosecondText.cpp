#include "browsersweep/profiles/internal/MicrosecondText.h"

#include <cstdint>

#include "browsersweep/base/FatalError.h"

namespace browsersweep {

std::string microsecondText(double seconds) {
    constexpr double microsecondsPerSecond = 1e6;
    constexpr double twoTo63 = 9223372036854775808.0;
    const double microseconds = seconds * microsecondsPerSecond;
    const bool fits = microseconds >= -twoTo63 && microseconds < twoTo63;  // false for NaN
    if (!fits) {
        fatalError("a date does not fit in 64 bits of microseconds");
    }
    return std::to_string(static_cast<std::int64_t>(microseconds));
}

}  // namespace browsersweep
