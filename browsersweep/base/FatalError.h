#pragma once

#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * Ends the process: the one way out for what must never happen, such as a sum of sizes that does
 * not fit its type. The message goes to standard error first; nothing is thrown, nothing returns.
 */
[[noreturn]] BROWSERSWEEP_EXPORT void fatalError(std::string_view message) noexcept;

}  // namespace browsersweep
