#pragma once

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/cleanable/CleanableDataList.h"

namespace browsersweep {

/**
 * Lists of items by key that are an item themselves, handled list after list in the order of their
 * keys: sizes add up, size and clean stop at the first error, the forms that ignore errors attempt
 * every list.
 */
template <typename Key>
class CleanableDataDictionary : public CleanableData {
public:
    /** A list of items for each key, in the order of the keys. */
    using Lists = std::map<Key, CleanableDataList>;

    CleanableDataDictionary() = default;
    /** A dictionary of these lists. */
    explicit CleanableDataDictionary(Lists lists) : lists_(std::move(lists)) {}

    /** All keys with their lists. */
    const Lists& lists() const& noexcept { return lists_; }
    /** Of a dictionary that goes away, its lists by value: a loop over them is safe. */
    Lists lists() && noexcept { return std::move(lists_); }

    /** The list of a key, or null if the key is absent. */
    const CleanableDataList* find(const Key& key) const {
        const auto found = lists_.find(key);
        return found == lists_.end() ? nullptr : &found->second;
    }

    /** Adds another dictionary: lists of a common key are joined, the own items first. */
    void merge(const CleanableDataDictionary& other) {
        for (const auto& [key, list] : other.lists_) {
            lists_[key].append(list);
        }
    }

    bool requiresClosedBrowserToClean() const noexcept override {
        return std::any_of(lists_.begin(), lists_.end(), [](const auto& entry) {
            return entry.second.requiresClosedBrowserToClean();
        });
    }

    /** Those of every list, in the order of the keys. */
    std::vector<CleanableDataLocation> locations() const override {
        std::vector<CleanableDataLocation> all;
        for (const auto& [key, list] : lists_) {
            const auto own = list.locations();
            all.insert(all.end(), own.begin(), own.end());
        }
        return all;
    }

    /** Those of every list, in the order of the keys; none where an item does not say. */
    std::vector<CleanableDataPart> parts() const override {
        std::vector<CleanableDataPart> all;
        for (const auto& [key, list] : lists_) {
            const auto own = list.parts();
            if (own.empty() && !list.items().empty()) {
                return {};
            }
            all.insert(all.end(), own.begin(), own.end());
        }
        return all;
    }

    using CleanableData::clean;
    using CleanableData::cleanIgnoringErrors;
    using CleanableData::size;
    using CleanableData::sizeIgnoringErrors;

    CleanableDataSize size(CleanableDataFilters filters) const override {
        CleanableDataSize sum;
        for (const auto& [key, list] : lists_) {
            sum = sum + list.size(filters);
        }
        return sum;
    }

    CleanableDataSize sizeIgnoringErrors(CleanableDataFilters filters) const noexcept override {
        CleanableDataSize sum;
        for (const auto& [key, list] : lists_) {
            sum = sum + list.sizeIgnoringErrors(filters);
        }
        return sum;
    }

    void clean(CleanableDataFilters filters) const override {
        for (const auto& [key, list] : lists_) {
            list.clean(filters);
        }
    }

    void cleanIgnoringErrors(CleanableDataFilters filters) const noexcept override {
        for (const auto& [key, list] : lists_) {
            list.cleanIgnoringErrors(filters);
        }
    }

private:
    Lists lists_;
};

/** A profile's or a browser's data by category. */
using CleanableDataMap = CleanableDataDictionary<CleanableDataCategory>;

}  // namespace browsersweep
