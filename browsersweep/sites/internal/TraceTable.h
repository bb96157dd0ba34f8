#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "browsersweep/sites/TraceKind.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {

/** A column that names sites. Without a name it is none. */
struct SiteColumn {
    std::string_view name;
    SiteForm form = SiteForm::address;
};

/** How the rows of one table hang together with those of another. */
struct TableRelation {
    std::string_view column;       ///< the table's own column
    std::string_view other;        ///< the other table; without a name there is no relation
    std::string_view otherColumn;  ///< what the own column refers to, or what refers to it
    SiteColumn names;              ///< a column of the other table that names sites
    /** What the other table names keeps the row, too; else it only makes it go where just certain
     * sites are meant. */
    bool keeps = true;
};

/** How a time is written down. */
enum class TimeForm {
    microsecondsSince1601,
    microsecondsSince1970,
    millisecondsSince1970,
    secondsSince1970,
    secondsSince2001,
};

/** The column that tells when a site was used last. Without a name there is none. */
struct TimeColumn {
    std::string_view name;
    TimeForm form = TimeForm::microsecondsSince1601;
};

/** A column of a row that stays, and what becomes of it. */
struct ColumnReset {
    std::string_view name;
    std::string_view value;  ///< as SQL has it
    bool tellsOfUse = true;  ///< another value than this one is a trace
};

/** How rows go. */
enum class TableRule {
    bySite,   ///< with the sites that the row's columns, or the related row's, name
    follows,  ///< the same, but the related rows are what is listed
    orphans,  ///< when the row that it refers to is gone, whenever that went
    loosens,  ///< the row stays, but what it refers to becomes NULL when that is gone
    resets,   ///< by site; the row stays, but some of its columns are reset
    mixed,    ///< with everything: no column names a site
};

/** One rule for the rows of one table. A table may have several, which are followed in order. */
struct TraceTable {
    std::string_view name;
    TraceKind kind = TraceKind::history;
    TableRule rule = TableRule::bySite;
    std::array<SiteColumn, 4> columns{};
    TimeColumn lastUsed{};
    TableRelation relation{};
    /** An expression of SQL: only rows for which it is true are traces. It is where rows that must
     * stay are told. Empty: all. It may ask `isProtected(address)`. */
    std::string_view condition{};
    std::span<const ColumnReset> resets{};
    std::string_view meaning{};  ///< of a mixed table, for people: what stands there
};

}  // namespace browsersweep
