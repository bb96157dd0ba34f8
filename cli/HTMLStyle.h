#pragma once

#include <string_view>

namespace browsersweep::cli {

/** The style sheet of the page. */
extern const std::string_view pageStyle;

/** Its SHA-256 in base 64, by which the page's policy allows this style sheet and no other. */
extern const std::string_view pageStyleDigest;

}  // namespace browsersweep::cli
