#include "browsersweep/profiles/safari/internal/SafariPermissions.h"

#include <algorithm>
#include <optional>

namespace browsersweep {
namespace {

bool isText(const PropertyList& value) {
    return value.asString() != nullptr;
}

// The list of texts below the key; null where it is absent or something else.
const PropertyList::Array* allowedDomains(const PropertyList& permission) {
    const PropertyList* domains = permission.find("Allowed Domains");
    const PropertyList::Array* list = domains == nullptr ? nullptr : domains->asArray();
    const bool isListOfTexts = list != nullptr && std::all_of(list->begin(), list->end(), isText);
    return isListOfTexts ? list : nullptr;
}

}  // namespace

std::vector<URL> allowedSites(const PropertyList& permissions) {
    std::vector<URL> sites;
    const PropertyList::Dictionary* entries = permissions.asDictionary();
    if (entries == nullptr) {
        return sites;
    }
    for (const PropertyList::Entry& entry : *entries) {
        const PropertyList::Array* domains = allowedDomains(entry.value);
        if (domains == nullptr) {
            continue;
        }
        for (const PropertyList& domain : *domains) {
            if (std::optional<URL> site = URL::parse(*domain.asString())) {
                sites.push_back(*std::move(site));
            }
        }
    }
    return sites;
}

}  // namespace browsersweep
