#pragma once

#include <string>

#include "cli/Report.h"

namespace browsersweep::cli {

/**
 * The report as one JSON object and a newline. Its keys and their order are a contract with other
 * programs; docs/host-program.md and docs/schemas hold it. The text is always valid UTF-8: bytes
 * that are none become replacement characters.
 */
std::string jsonText(const Report& report);

}  // namespace browsersweep::cli
