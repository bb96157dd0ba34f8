#include "cli/Table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

std::string line(const std::vector<Table::Column>& columns, const std::vector<std::size_t>& widths,
                 const std::vector<std::string>& cells) {
    constexpr std::string_view gap = "  ";
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string padding(widths[i] - displayWidth(cells[i]), ' ');
        const bool isRight = columns[i].alignment == Alignment::right;
        text += isRight ? padding + cells[i] : cells[i] + padding;
        text += gap;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text + "\n";
}

}  // namespace

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {
    std::vector<std::string> headers;
    headers.reserve(columns_.size());
    for (const auto& column : columns_) {
        headers.push_back(column.header);
    }
    addRow(headers);
}

void Table::addRow(const std::vector<std::string>& cells) {
    std::vector<std::string> row;
    row.reserve(columns_.size());
    for (const auto& cell : cells) {
        row.push_back(printable(cell));
    }
    rows_.push_back(std::move(row));
}

std::string Table::text() const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& row : rows_) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    std::string text;
    for (const auto& row : rows_) {
        text += line(columns_, widths, row);
    }
    return text;
}

}  // namespace browsersweep::cli
