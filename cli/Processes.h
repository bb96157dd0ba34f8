#pragma once

#include <string>
#include <vector>

namespace browsersweep::cli {

/**
 * The names of the programs that the current user runs now. Linux cuts them after 15 bytes. What
 * cannot be looked at, such as a process that ends meanwhile, is left out.
 */
std::vector<std::string> namesOfRunningPrograms();

}  // namespace browsersweep::cli
