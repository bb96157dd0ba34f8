#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"

namespace browsersweep {

/**
 * A list of items that is an item itself: sizes add up and cleaning goes through it in list order,
 * both stop at the first error and leave the items after it alone. The forms that ignore errors
 * attempt every item.
 */
class BROWSERSWEEP_EXPORT CleanableDataList : public CleanableData {
public:
    /** Items never change, so sharing one is as good as copying it. */
    using Item = std::shared_ptr<const CleanableData>;

    CleanableDataList() = default;
    /** A list of these items, none of which may be null. */
    explicit CleanableDataList(std::vector<Item> items) : items_(std::move(items)) {}

    /** The items in the order in which they are handled. */
    const std::vector<Item>& items() const& noexcept { return items_; }
    /** Of a list that goes away, its items by value: a loop over them is safe. */
    std::vector<Item> items() && noexcept { return std::move(items_); }

    /** Adds the items of another list after the own ones. */
    void append(const CleanableDataList& other);

    /** True if any item's is; an empty list gives false. */
    bool requiresClosedBrowserToClean() const noexcept override;

    /** Those of every item, in list order. */
    std::vector<CleanableDataLocation> locations() const override;

    /** Those of every item, in list order; none where an item does not say. */
    std::vector<CleanableDataPart> parts() const override;

    using CleanableData::clean;
    using CleanableData::cleanIgnoringErrors;
    using CleanableData::size;
    using CleanableData::sizeIgnoringErrors;
    CleanableDataSize size(CleanableDataFilters filters) const override;
    CleanableDataSize sizeIgnoringErrors(CleanableDataFilters filters) const noexcept override;
    void clean(CleanableDataFilters filters) const override;
    void cleanIgnoringErrors(CleanableDataFilters filters) const noexcept override;

private:
    std::vector<Item> items_;
};

}  // namespace browsersweep
