#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace browsersweep {

/**
 * What a browser's own files say of where a profile lies is not to be trusted: every program of the
 * user can write them, also one that the system keeps from the user's protected folders. Each of
 * these says why such a text does not name what it should; absent where it does.
 */
/** @{ */
/** It should name one folder within another: no path, and none of the names with a meaning. */
std::optional<std::string> reasonAgainstName(std::string_view name);
/** It should lead to something below the folder that it is appended to. */
std::optional<std::string> reasonAgainstRelativePath(std::string_view path);
/** It should lead from the root of the file system, straight down. */
std::optional<std::string> reasonAgainstAbsolutePath(std::string_view path);
/** @} */

}  // namespace browsersweep
