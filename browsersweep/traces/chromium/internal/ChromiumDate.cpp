#include "browsersweep/traces/chromium/internal/ChromiumDate.h"

namespace browsersweep {

std::optional<Date> dateFromChromium(std::uint64_t microseconds) noexcept {
    constexpr double perSecond = 1e6;
    constexpr double from1601To1970 = 11644473600.0;
    if (microseconds == 0) {
        return std::nullopt;
    }
    return dateFrom1970Seconds(static_cast<double>(microseconds) / perSecond - from1601To1970);
}

}  // namespace browsersweep
