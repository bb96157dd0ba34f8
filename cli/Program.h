#pragma once

#include <string>
#include <vector>

namespace browsersweep::cli {

/** Runs the program with the arguments after its name. The result is its exit status. */
int run(const std::vector<std::string>& arguments);

}  // namespace browsersweep::cli
