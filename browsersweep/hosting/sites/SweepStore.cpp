#include "browsersweep/hosting/sites/SweepStore.h"

#include <utility>

#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {
namespace {

void add(Browser browser, const std::shared_ptr<const BrowserProfile>& profile, TraceStores found,
         std::vector<SweepStore>& stores) {
    for (auto& store : found) {
        stores.push_back({browser, profile, std::move(store)});
    }
}

}  // namespace

std::vector<SweepStore> sweepStores(Browser browser, const BrowserCleaner& cleaner,
                                    const ProfilePredicate& shouldIncludeProfile,
                                    const Home& home) {
    std::vector<SweepStore> stores;
    bool isEveryProfileChosen = true;
    auto profiles = cleaner.profileReader().profiles();
    const auto beside = profilesBeside(browser, home);
    profiles.insert(profiles.end(), beside.begin(), beside.end());
    for (const auto& profile : profiles) {
        if (shouldIncludeProfile(*profile)) {
            add(browser, profile, traceStores(*profile, home), stores);
        } else {
            isEveryProfileChosen &= profile->leftOutReason().has_value();
        }
    }
    if (isEveryProfileChosen) {
        add(browser, nullptr, traceStores(browser, home), stores);
    }
    return stores;
}

}  // namespace browsersweep
