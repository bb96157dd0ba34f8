// A small application about sites: lists what each left, and forgets one of them in one browser,
// after it has said what would go and what would stay.

#include <iostream>
#include <string>
#include <vector>

#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/hosting/sites/ForgetSweep.h"
#include "browsersweep/hosting/sites/SiteInventory.h"
#include "browsersweep/hosting/sites/SweepStore.h"

namespace bs = browsersweep;

namespace {

void listSites(const std::vector<bs::SweepStore>& stores) {
    std::vector<bs::TraceListing> listings;
    for (const auto& each : bs::SiteInventory(stores, {}).list().listings) {
        listings.push_back(each.listing);
    }
    for (const bs::SiteSummary& site : bs::summarize(stores, listings)) {
        std::cout << site.site.name() << ": " << site.size.itemCount.value << " items\n";
    }
}

void show(const bs::ForgetResult& result, const std::string& heading) {
    std::cout << heading << '\n';
    for (const bs::StoreForgetting& store : result.stores) {
        if (store.gone && !store.gone->bySite.empty()) {
            std::cout << "  " << store.what.filename().string() << ": "
                      << bs::displayName(store.verdict) << '\n';
        }
        for (const bs::KeptTrace& kept : store.kept) {
            std::cout << "  " << kept.what.filename().string() << " keeps "
                      << bs::displayName(kept.kind) << '\n';
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::cerr << "usage: forget_site HOME\n";
        return 2;
    }
    const bs::Home home = bs::Home::at(arguments[1]);
    constexpr auto browser = bs::Browser::firefox;
    const auto stores = bs::sweepStores(
        browser, *bs::cleaner(browser, home),
        [](const bs::BrowserProfile& profile) { return profile.isPrimary(); }, home);
    listSites(stores);

    bs::ForgetOptions options;
    options.request.sites = bs::SiteSelection::only({bs::Site::ofText("example.net").value()});
    bs::ForgetSweep sweep(stores, options);
    show(sweep.plan(), "Forgetting example.net would change");
    show(sweep.forget(), "It changed");
    listSites(stores);
}
