#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/Table.h"

namespace browsersweep::cli {

/**
 * A table of what lies where. Sites and places are columns as long as everything fits; on a
 * terminal that is too narrow for that they are headings above their rows, so that they can be
 * read whole.
 */
class HeadedTable {
public:
    /** What a row is about, and what it says. */
    struct Row {
        std::string site;  ///< empty in a table that names none
        std::string place;
        std::vector<Table::Cell> cells;  ///< as many as there are columns of cells
    };

    /**
     * `columns` are those of the cells, the kind of a thing first. The column of places stands
     * before the cell number `placeIndex`, 0 or 1.
     */
    HeadedTable(std::vector<Table::Column> columns, std::size_t placeIndex);

    /** Rows of one site, and of one place within it, are added one after the other. */
    void addRow(Row row);

    /** Adds the last row: these are its last cells, and "Total" is its first. */
    void addTotal(std::vector<Table::Cell> figures);

    std::string text(const Appearance& appearance) const;

private:
    Table inColumns(bool areSitesInColumn) const;
    Table underHeadings() const;
    std::vector<Table::Cell> totalOf(std::size_t count) const;
    bool isOfOneSite() const noexcept;

    std::vector<Table::Column> columns_;
    std::size_t placeIndex_;
    std::vector<Row> rows_;
    std::vector<Table::Cell> total_;
};

}  // namespace browsersweep::cli
