#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/cleanable/FilterSight.h"

namespace browsersweep {

/** A place on the disk where an item's data lies. */
struct CleanableDataLocation {
    /** What is there. */
    enum class Kind {
        folder,    ///< files below it
        file,      ///< the file itself, or what is in it
        database,  ///< rows of an SQLite database
    };

    Kind kind = Kind::file;      ///< what is there, or would be
    std::filesystem::path path;  ///< whether or not anything exists there
    /** Of a database: changes that wait in a file beside it are counted with it. */
    bool countsPendingChanges = false;

    /** Whether all fields are equal. */
    friend bool operator==(const CleanableDataLocation&, const CleanableDataLocation&) = default;
};

class CleanableData;

/** A part of an item that filters treat alike, such as a table of a database. */
struct CleanableDataPart {
    std::string table;  ///< of a database; empty where the part is no table
    FilterSight sight;  ///< what its data can be told by; the rest of a filter it does not hear
    /** The part alone. Under filters it takes nothing that lacks what `sight` promises. */
    std::shared_ptr<const CleanableData> data;
};

/**
 * One piece of browsing data that can be measured and deleted: a cache folder, tables of a
 * database, a cookie file. Lists of items and dictionaries of lists are items themselves, so a
 * whole browser is measured or cleaned in one call.
 *
 * Items are immutable and read the browser's files afresh at each call. Nothing is measured by
 * writing: sizing leaves the user's files as they are. Errors are the item's own
 * (`std::filesystem::filesystem_error`, `SQLiteError`) and are passed on unchanged.
 */
class BROWSERSWEEP_EXPORT CleanableData {
public:
    CleanableData() = default;
    virtual ~CleanableData();

    /** Whether the data can be cleaned safely only while its browser is not running. */
    virtual bool requiresClosedBrowserToClean() const noexcept = 0;

    /** Where the data lies; empty for an item that does not say. Reads no file. */
    virtual std::vector<CleanableDataLocation> locations() const;

    /**
     * The parts that it is made of, in the order in which they are handled; empty for an item that
     * does not say, of which no filter is known to see anything. Reads no file.
     */
    virtual std::vector<CleanableDataPart> parts() const;

    /** Measures what the filters select. */
    virtual CleanableDataSize size(CleanableDataFilters filters) const = 0;

    /** The same without errors: where measuring fails, a zero that is marked approximate. */
    virtual CleanableDataSize sizeIgnoringErrors(CleanableDataFilters filters) const noexcept;

    /** Deletes what the filters select. What was deleted before an error stays deleted. */
    virtual void clean(CleanableDataFilters filters) const = 0;

    /** The same without errors: a failure is dropped silently. */
    virtual void cleanIgnoringErrors(CleanableDataFilters filters) const noexcept;

    /** Measures everything. */
    CleanableDataSize size() const;
    /** Measures everything without errors. */
    CleanableDataSize sizeIgnoringErrors() const noexcept;
    /** Deletes everything. */
    void clean() const;
    /** Deletes everything without errors. */
    void cleanIgnoringErrors() const noexcept;

    /**
     * Cleans and tells what is really gone: the difference of the sizes measured before and after.
     * The first failure of the three steps ends it.
     */
    CleanableDataSize cleanAndReturnSize(CleanableDataFilters filters) const;

    /** The same from the operations that ignore errors. */
    CleanableDataSize cleanAndReturnSizeIgnoringErrors(CleanableDataFilters filters) const noexcept;

protected:
    /** @{ */
    /** For derived classes: the base alone is never copied. */
    CleanableData(const CleanableData&) = default;
    CleanableData(CleanableData&&) = default;
    CleanableData& operator=(const CleanableData&) = default;
    CleanableData& operator=(CleanableData&&) = default;
    /** @} */
};

}  // namespace browsersweep
