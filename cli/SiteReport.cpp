#include "cli/SiteReport.h"

#include <chrono>
#include <cmath>

#include <fmt/format.h>

namespace browsersweep::cli {

std::optional<std::string> momentText(Date date) {
    constexpr double firstOfYear1 = -62135596800;
    constexpr double firstOfYear10000 = 253402300800;
    const double seconds = std::floor(secondsSince1970(date));
    if (!(seconds >= firstOfYear1 && seconds < firstOfYear10000)) {
        return std::nullopt;
    }
    const std::chrono::sys_seconds moment{std::chrono::seconds{static_cast<std::int64_t>(seconds)}};
    const auto midnight = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day day{midnight};
    const std::chrono::hh_mm_ss time{moment - midnight};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::string dayText(Date date) {
    constexpr std::size_t lengthOfDay = 10;
    return momentText(date).value_or("").substr(0, lengthOfDay);
}

}  // namespace browsersweep::cli
