#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace browsersweep::tests {

/** A record as Firefox writes it: its sum, how often it was used, on which day, a key, a value. */
std::string stateSlot(std::string_view key, std::string_view value, std::size_t valueSize,
                      unsigned day = 20000);

}  // namespace browsersweep::tests
