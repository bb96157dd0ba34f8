#pragma once

#include <set>
#include <vector>

#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/sites/TraceKind.h"

namespace browsersweep::cli {

/** The kinds of traces that belong to categories. */
std::set<TraceKind> kindsOfCategories(const std::vector<CleanableDataCategory>& categories);

}  // namespace browsersweep::cli
