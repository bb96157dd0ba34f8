#pragma once

#include <string>

namespace browsersweep {

/**
 * Seconds as whole microseconds in decimal digits, cut off toward zero: how the databases of the
 * Chromium and Firefox families store times. A number of microseconds that is not finite or does
 * not fit in 64 bits ends the process: no date of a browser comes near it.
 */
std::string microsecondText(double seconds);

}  // namespace browsersweep
