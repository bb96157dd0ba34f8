#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "cli/Appearance.h"

namespace browsersweep::cli {

enum class Alignment { left, right };

/**
 * A table for people: columns as wide as their widest cell, two spaces apart. Where that is wider
 * than the terminal, the columns that may be are narrowed, or left out.
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
    };

    struct Cell {
        Cell(std::string cellText, Style cellStyle = Style::plain)
            : text(std::move(cellText)), style(cellStyle) {}
        Cell(const char* cellText) : text(cellText) {}

        std::string text;
        Style style = Style::plain;
    };

    explicit Table(std::vector<Column> columns);

    /** Adds a row of as many cells as there are columns. */
    void addRow(std::vector<Cell> cells);

    /** The lines of the table, header first, without spaces at their ends. Cells are printable. */
    std::string text(const Appearance& appearance) const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_;
};

}  // namespace browsersweep::cli
