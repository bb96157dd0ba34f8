#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace browsersweep::tests {

/**
 * Runs a Python program that reads the input as its standard input, and returns what it prints.
 * Nothing where there is no python3; a test that needs it is skipped then. A program that fails
 * throws `std::runtime_error`.
 */
std::optional<std::string> runPython(std::string_view program, std::string_view input);

}  // namespace browsersweep::tests
