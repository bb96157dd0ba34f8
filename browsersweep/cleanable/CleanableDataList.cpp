#include "browsersweep/cleanable/CleanableDataList.h"

#include <algorithm>

namespace browsersweep {

void CleanableDataList::append(const CleanableDataList& other) {
    const std::vector<Item> added = other.items_;  // `other` may be this list
    items_.insert(items_.end(), added.begin(), added.end());
}

bool CleanableDataList::requiresClosedBrowserToClean() const noexcept {
    return std::any_of(items_.begin(), items_.end(),
                       [](const Item& item) { return item->requiresClosedBrowserToClean(); });
}

std::vector<CleanableDataLocation> CleanableDataList::locations() const {
    std::vector<CleanableDataLocation> all;
    for (const Item& item : items_) {
        const auto own = item->locations();
        all.insert(all.end(), own.begin(), own.end());
    }
    return all;
}

std::vector<CleanableDataPart> CleanableDataList::parts() const {
    std::vector<CleanableDataPart> all;
    for (const Item& item : items_) {
        const auto own = item->parts();
        if (own.empty()) {
            return {};
        }
        all.insert(all.end(), own.begin(), own.end());
    }
    return all;
}

CleanableDataSize CleanableDataList::size(CleanableDataFilters filters) const {
    CleanableDataSize sum;
    for (const Item& item : items_) {
        sum = sum + item->size(filters);
    }
    return sum;
}

CleanableDataSize CleanableDataList::sizeIgnoringErrors(
    CleanableDataFilters filters) const noexcept {
    CleanableDataSize sum;
    for (const Item& item : items_) {
        sum = sum + item->sizeIgnoringErrors(filters);
    }
    return sum;
}

void CleanableDataList::clean(CleanableDataFilters filters) const {
    for (const Item& item : items_) {
        item->clean(filters);
    }
}

void CleanableDataList::cleanIgnoringErrors(CleanableDataFilters filters) const noexcept {
    for (const Item& item : items_) {
        item->cleanIgnoringErrors(filters);
    }
}

}  // namespace browsersweep
