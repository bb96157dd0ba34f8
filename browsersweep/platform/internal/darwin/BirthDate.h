#pragma once

#include <chrono>
#include <ctime>
#include <optional>

#include "browsersweep/base/Date.h"

namespace browsersweep::posix {

/** A birth time as the system tells it: zero where the file system keeps none. */
inline std::optional<Date> birthDate(const timespec& birth) noexcept {
    if (birth.tv_sec == 0 && birth.tv_nsec == 0) {
        return std::nullopt;
    }
    return dateFrom1970Seconds(static_cast<double>(birth.tv_sec)) +
           std::chrono::duration<double>(static_cast<double>(birth.tv_nsec) * 1e-9);
}

}  // namespace browsersweep::posix
