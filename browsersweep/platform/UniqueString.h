#pragma once

#include <string>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * A text that no other process and no other call gives: 32 hexadecimal digits from the system's
 * random source. Fit for file names, and not to be guessed.
 */
BROWSERSWEEP_EXPORT std::string uniqueString();

}  // namespace browsersweep
