#pragma once

#include <string>

#include "cli/HTMLReport.h"
#include "cli/SiteReport.h"

namespace browsersweep::cli {

/**
 * The sites as one page of HTML for people: a table of all of them with a field that searches it.
 * It loads nothing, and of what it runs its own policy allows that search alone. Names are escaped.
 */
std::string sitesPage(const SiteListReport& report, const PageFacts& facts);

}  // namespace browsersweep::cli
