#pragma once

#include <string>

#include "cli/Appearance.h"
#include "cli/Report.h"
#include "cli/SizesView.h"

namespace browsersweep::cli {

/**
 * The report for people: an aligned table, with bars beside sizes. What failed is told elsewhere,
 * see `failures`.
 */
std::string peopleText(const Report& report, const Appearance& appearance,
                       const SizesView& view = {});

}  // namespace browsersweep::cli
