#pragma once

#include <string>
#include <vector>

namespace browsersweep::cli {

enum class Alignment { left, right };

/** A table for people: columns as wide as their widest cell, two spaces apart. */
class Table {
public:
    struct Column {
        std::string header;
        Alignment alignment = Alignment::left;
    };

    explicit Table(std::vector<Column> columns);

    /** Adds a row of as many cells as there are columns. Cells are made printable. */
    void addRow(const std::vector<std::string>& cells);

    /** The lines of the table, header first, without spaces at their ends. */
    std::string text() const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace browsersweep::cli
