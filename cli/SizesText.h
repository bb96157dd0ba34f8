#pragma once

#include <string>

#include "cli/Appearance.h"
#include "cli/Report.h"
#include "cli/SizesView.h"

namespace browsersweep::cli {

/**
 * The sizes for people: a table with bars, the total last. What is nothing has no row unless it is
 * wanted; a figure that lacks what failed is approximate, and "failed" where nothing else is known.
 */
std::string sizesText(const SizesReport& report, const SizesView& view,
                      const Appearance& appearance);

}  // namespace browsersweep::cli
