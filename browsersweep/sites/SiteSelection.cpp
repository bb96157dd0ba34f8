#include "browsersweep/sites/SiteSelection.h"

#include <algorithm>

namespace browsersweep {

bool SiteSelection::selects(std::span<const Site> sites) const noexcept {
    if (rule_ == Rule::everything) {
        return true;
    }
    const auto isIn = [&sites](const std::set<Site>& named) {
        return std::any_of(sites.begin(), sites.end(),
                           [&named](const Site& site) { return named.contains(site); });
    };
    return isIn(sites_) == (rule_ == Rule::only) && !isIn(kept_);
}

}  // namespace browsersweep
