#include "cli/Table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using Cells = std::vector<Table::Cell>;

Cells printableCells(Cells cells, const Appearance& appearance) {
    for (auto& cell : cells) {
        cell.text = printable(cell.text);
        // The program draws bars for the stream at hand; they are no text of anybody else.
        if (appearance.text == CharacterSet::ascii && cell.style != Style::bar) {
            cell.text = asciiOf(cell.text);
        }
    }
    return cells;
}

std::string line(const std::vector<Table::Column>& columns, const std::vector<std::size_t>& widths,
                 const Cells& cells, const Appearance& appearance) {
    constexpr std::size_t gap = 2;
    std::string text;
    std::size_t owed = 0;  // spaces are written only before something visible
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t padding = widths[i] - displayWidth(cells[i].text);
        const bool isRight = columns[i].alignment == Alignment::right;
        owed += isRight ? padding : 0;
        if (!cells[i].text.empty()) {
            text.append(owed, ' ');
            text += styled(cells[i].text, cells[i].style, appearance);
            owed = 0;
        }
        owed += (isRight ? 0 : padding) + gap;
    }
    return text + "\n";
}

}  // namespace

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {
    Cells headers;
    headers.reserve(columns_.size());
    for (const auto& column : columns_) {
        headers.emplace_back(column.header, Style::faint);
    }
    addRow(std::move(headers));
}

void Table::addRow(std::vector<Cell> cells) {
    rows_.push_back(std::move(cells));
}

std::string Table::text(const Appearance& appearance) const {
    std::vector<Cells> rows;
    rows.reserve(rows_.size());
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& row : rows_) {
        rows.push_back(printableCells(row, appearance));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(rows.back()[i].text));
        }
    }
    std::string text;
    for (const auto& row : rows) {
        text += line(columns_, widths, row, appearance);
    }
    return text;
}

}  // namespace browsersweep::cli
