#pragma once

#include "cli/Options.h"

namespace browsersweep::cli {

/**
 * Throws a `UsageError` where the databases that are selected could not take the filters: found in
 * the middle of a clean, that would leave it half done. Touches no file.
 */
void requireFittingFilters(const Options& options);

}  // namespace browsersweep::cli
