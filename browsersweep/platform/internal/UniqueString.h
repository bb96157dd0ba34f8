#pragma once

#include <string>

namespace browsersweep {

/**
 * A text that no other process and no other call gives: 32 hexadecimal digits from the system's
 * random source. Fit for file names, and not to be guessed.
 */
std::string uniqueString();

}  // namespace browsersweep
