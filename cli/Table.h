#pragma once

#include <string>
#include <vector>

#include "cli/Appearance.h"

namespace browsersweep::cli {

enum class Alignment { left, right };

/** A table for people: columns as wide as their widest cell, two spaces apart. */
class Table {
public:
    struct Column {
        std::string header;
        Alignment alignment = Alignment::left;
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
