#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace browsersweep::cli {

/** The one of the known words that was probably meant; absent where none is close. */
std::optional<std::string_view> closest(std::string_view word,
                                        const std::vector<std::string_view>& known);

/** What would be right: "did you mean X?", or else the list of all known words. */
std::string suggestion(std::string_view word, const std::vector<std::string_view>& known);

}  // namespace browsersweep::cli
