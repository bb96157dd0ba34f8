#include "browsersweep/sites/internal/SiteMatcher.h"

#include <algorithm>

namespace browsersweep {

bool SiteMatcher::isNamed(const std::string& host) {
    auto found = named_.find(host);
    if (found == named_.end()) {
        const auto site = Site::ofHost(host);
        found = named_.emplace(host, site && selection_.sites().contains(*site)).first;
    }
    return found->second;
}

bool SiteMatcher::selectsHosts(std::span<const std::string> hosts) {
    if (selection_.isEverything()) {
        return true;
    }
    const bool isAnyNamed = std::any_of(hosts.begin(), hosts.end(),
                                        [this](const std::string& host) { return isNamed(host); });
    return isAnyNamed == selection_.isOnly();
}

}  // namespace browsersweep
