#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/sites/SiteSelection.h"
#include "browsersweep/sites/internal/TraceTable.h"

namespace browsersweep {

/** What a database really has of a table and of the one that it is related to. */
struct TableColumns {
    std::set<std::string, std::less<>> own;  ///< the names; none: there is no such table
    /** Those of the own columns that may hold large values: their bytes are not to be read. */
    std::set<std::string, std::less<>> large;
    std::set<std::string, std::less<>> other;  ///< of the related table
    /** The column that is referred to is the row's own number: never NULL, and found at once. */
    bool otherIsRowNumber = false;
    bool ownIsRequired = false;  ///< the column that refers is never NULL
};

/**
 * The statements of one rule of one table, as far as the database has what it names: a table that
 * is missing has none, and a column that is missing counts for nothing. A table that has none of
 * the columns by which it names sites is like a mixed one. The statements ask the functions of
 * `SiteFunctions`.
 */
class TraceTableSQL {
public:
    TraceTableSQL(const TraceTable& table, TableColumns columns);

    /** Whether the rule has anything to work on in this database. */
    bool applies() const;
    /** Whether no site can be told in its rows. */
    bool isMixed() const;

    /** The rows that the rule takes with a selection. Of orphans, the selection does not matter. */
    std::string condition(const SiteSelection& selection) const;

    /** Deletes, resets or loosens these rows. */
    std::string removal(const SiteSelection& selection) const;

    /**
     * Orphans alone: whether the other table has a row, a number as above, and what removes all
     * rows at once where it has none. Empty where rows may stay even then.
     */
    std::string parentQuestion() const;
    std::string removalOfAll() const;

    /** Whether there is such a row: one row with a number, 1 or 0. */
    std::string question(const SiteSelection& selection) const;

    /**
     * The traces: the last use, the bytes of the row's values, an expression over the row, then the
     * columns that name sites in the order of `listedForms`.
     */
    std::string listing(std::string_view expression) const;
    std::vector<SiteForm> listedForms() const;

    /** An expression over each row of the table. */
    std::string allValues(std::string_view expression) const;

    /** The number of rows and the bytes of their values. */
    std::string totals() const;

private:
    bool has(std::string_view column) const;
    bool hasRelation() const;
    bool isNamedByRelation() const;
    bool isAboutOrphans() const;
    std::string ownNames() const;
    std::string relatedNames() const;
    std::string namesAny(bool alsoWhatOnlyRemoves) const;
    std::string selected(const SiteSelection& selection) const;
    std::string isTrace() const;
    std::string orphanCondition() const;
    std::string resetCondition() const;
    std::string bytes() const;

    const TraceTable& table_;
    TableColumns columns_;
};

}  // namespace browsersweep
