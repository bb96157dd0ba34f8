#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "cli/Appearance.h"

namespace browsersweep::cli {

enum class Alignment { left, right };

/** Which part of a cell is left out where it is too long. */
enum class Cut { end, front };

/**
 * A table for people: columns as wide as their widest cell, two spaces apart. Where that is wider
 * than the terminal, the columns that may be are narrowed, or left out. Bars take what room is
 * left.
 */
class Table {
public:
    struct Column {
        std::string header;
        Alignment alignment = Alignment::left;
        /** How narrow it may become, its cells cut; 0: never narrower than its widest cell. */
        std::size_t least = 0;
        /** Of the columns that may be left out, that of the highest rank goes first; 0: never. */
        int expendable = 0;
        /** Where a cell of it is cut; a path tells more by its end. */
        Cut cut = Cut::end;
    };

    struct Cell {
        Cell(std::string cellText, Style cellStyle = Style::plain)
            : text(std::move(cellText)), style(cellStyle) {}
        Cell(const char* cellText) : text(cellText) {}

        std::string text;
        Style style = Style::plain;
    };

    /** One of the bars that stand after the last column, all of one scale. */
    struct Bar {
        std::int64_t value = 0;
        std::int64_t largest = 0;  ///< the value whose bar is the longest
    };

    explicit Table(std::vector<Column> columns);

    /** Adds a row of as many cells as there are columns. */
    void addRow(std::vector<Cell> cells);

    /** The same with a bar after them. */
    void addRow(std::vector<Cell> cells, Bar bar);

    /** Adds a line of its own that belongs to no column; it is broken where it is too long. */
    void addHeading(std::string text);

    /** Whether no column has to be narrowed or left out for the terminal. */
    bool fits(const Appearance& appearance) const;

    /** The lines of the table, header first, without spaces at their ends. Cells are printable. */
    std::string text(const Appearance& appearance) const;

private:
    struct Row {
        std::vector<Cell> cells;  ///< one alone in a heading
        Bar bar;
        bool isHeading = false;
    };

    std::vector<std::size_t> widthsOf(const std::vector<std::vector<Cell>>& rows) const;
    std::vector<std::vector<Cell>> printableRows(const Appearance& appearance) const;

    std::vector<Column> columns_;
    std::vector<Row> rows_;
};

}  // namespace browsersweep::cli
