#include "cli/HeadedTable.h"

#include <algorithm>
#include <utility>

namespace browsersweep::cli {
namespace {

template <typename Value>
void insertAt(std::size_t index, Value value, std::vector<Value>& values) {
    values.insert(values.begin() + static_cast<std::ptrdiff_t>(index), std::move(value));
}

}  // namespace

HeadedTable::HeadedTable(std::vector<Table::Column> columns, std::size_t placeIndex)
    : columns_(std::move(columns)), placeIndex_(placeIndex) {}

void HeadedTable::addRow(Row row) {
    rows_.push_back(std::move(row));
}

void HeadedTable::addTotal(std::vector<Table::Cell> figures) {
    total_ = std::move(figures);
}

std::string HeadedTable::text(const Appearance& appearance) const {
    const bool isAnySite = !rows_.empty() && !rows_.front().site.empty();
    auto table = inColumns(isAnySite);
    if (!table.fits(appearance) && isAnySite && isOfOneSite()) {
        table = inColumns(false);
    }
    return (table.fits(appearance) ? table : underHeadings()).text(appearance);
}

Table HeadedTable::inColumns(bool areSitesInColumn) const {
    auto columns = columns_;
    insertAt(placeIndex_, {"Where"}, columns);
    if (areSitesInColumn) {
        insertAt(0, {"Site"}, columns);
    }
    const auto count = columns.size();
    Table table(std::move(columns));
    if (!areSitesInColumn && !rows_.empty() && !rows_.front().site.empty()) {
        table.addHeading(rows_.front().site);
    }
    for (const auto& row : rows_) {
        auto cells = row.cells;
        insertAt(placeIndex_, Table::Cell(row.place), cells);
        if (areSitesInColumn) {
            insertAt(0, Table::Cell(row.site), cells);
        }
        table.addRow(std::move(cells));
    }
    if (!total_.empty()) {
        table.addRow(totalOf(count));
    }
    return table;
}

/** The only site is the first heading; where there are more, each heading begins with its own. */
Table HeadedTable::underHeadings() const {
    const bool isOneSite = isOfOneSite();
    Table table(columns_);
    std::string last;
    if (isOneSite && !rows_.front().site.empty()) {
        table.addHeading(rows_.front().site);
    }
    for (const auto& row : rows_) {
        auto heading = isOneSite ? row.place : row.site + ": " + row.place;
        if (heading != last) {
            table.addHeading(heading);
            last = std::move(heading);
        }
        auto cells = row.cells;
        cells.front().text.insert(0, "  ");
        table.addRow(std::move(cells));
    }
    if (!total_.empty()) {
        table.addRow(totalOf(columns_.size()));
    }
    return table;
}

std::vector<Table::Cell> HeadedTable::totalOf(std::size_t count) const {
    std::vector<Table::Cell> cells(count - total_.size(), "");
    cells.front() = {"Total", Style::strong};
    cells.insert(cells.end(), total_.begin(), total_.end());
    return cells;
}

bool HeadedTable::isOfOneSite() const noexcept {
    return !rows_.empty() && std::all_of(rows_.begin(), rows_.end(), [this](const Row& row) {
        return row.site == rows_.front().site;
    });
}

}  // namespace browsersweep::cli
