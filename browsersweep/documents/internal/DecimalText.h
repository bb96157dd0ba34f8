#pragma once

#include <string>

namespace browsersweep {

/**
 * The default decimal text of a double: the shortest digits that read back the same. Decimal form,
 * with ".0" when whole, for magnitudes from 0.0001 up to 2^53; otherwise exponent form with a sign
 * and at least two digits, such as 1e+16 and 1e-05. Independent of the process's locale.
 */
std::string decimalText(double value);

}  // namespace browsersweep
