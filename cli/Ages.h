#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace browsersweep::cli {

/** The seconds of a text such as "30d": a number and h, d, w or y. Absent for any other text. */
std::optional<double> secondsOfAge(std::string_view age);

/** What is wrong with a text as an age; empty where nothing is. */
std::string faultOfAge(const std::string& age);

}  // namespace browsersweep::cli
