#include "browsersweep/sites/SiteSelection.h"

#include <algorithm>

namespace browsersweep {

bool SiteSelection::selects(std::span<const Site> sites) const noexcept {
    if (rule_ == Rule::everything) {
        return true;
    }
    const bool isNamed = std::any_of(sites.begin(), sites.end(),
                                     [this](const Site& site) { return sites_.contains(site); });
    return isNamed == (rule_ == Rule::only);
}

}  // namespace browsersweep
