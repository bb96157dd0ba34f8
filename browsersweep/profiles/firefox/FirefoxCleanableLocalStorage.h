#pragma once

#include <memory>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/sqlite/DatabaseInspection.h"

namespace browsersweep {

/**
 * Firefox's local storage. Its database keys origins by their characters in reverse order
 * ("moc.elpmaxe"), so the item reverses the patterns of every filter, user-perceived character by
 * character, and leaves the rest to the item that it wraps.
 */
class BROWSERSWEEP_EXPORT FirefoxCleanableLocalStorage : public CleanableData,
                                                         public InspectableDatabase {
public:
    /** Wraps the item of the table, which may not be null. */
    explicit FirefoxCleanableLocalStorage(
        std::shared_ptr<const CleanableData> cleanableSQLiteDatabase);

    /** The item that it wraps. */
    const std::shared_ptr<const CleanableData>& cleanableSQLiteDatabase() const noexcept {
        return cleanableSQLiteDatabase_;
    }

    /** As the wrapped item has it. */
    bool requiresClosedBrowserToClean() const noexcept override;

    /** As the wrapped item has them. */
    std::vector<CleanableDataLocation> locations() const override {
        return cleanableSQLiteDatabase_->locations();
    }

    /** As the wrapped item has them, each wrapped. */
    std::vector<CleanableDataPart> parts() const override;

    using CleanableData::clean;
    using CleanableData::size;
    /** Throws what the wrapped item throws. */
    CleanableDataSize size(CleanableDataFilters filters) const override;
    /** Throws what the wrapped item throws. */
    void clean(CleanableDataFilters filters) const override;

    /** Of the wrapped item's database; an empty finding if it is not a database. */
    DatabaseInspection inspect(CleanableDataFilters filters) const override;

private:
    std::shared_ptr<const CleanableData> cleanableSQLiteDatabase_;
};

}  // namespace browsersweep
