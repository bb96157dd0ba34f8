#pragma once

#include <set>
#include <string_view>

#include "browsersweep/sites/Site.h"

namespace browsersweep {

/**
 * Whether bytes of an unknown format hold the name of a host of a site, in ASCII or UTF-16: by
 * whole labels, in any case of letters.
 */
bool namesSite(std::string_view bytes, const Site& site);

/** The same for any of several sites. */
bool namesAny(std::string_view bytes, const std::set<Site>& sites);

}  // namespace browsersweep
