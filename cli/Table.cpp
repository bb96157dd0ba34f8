#include "cli/Table.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "cli/Figures.h"
#include "cli/Text.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

using Cells = std::vector<Table::Cell>;

Cells printableCells(Cells cells, const Appearance& appearance) {
    for (auto& cell : cells) {
        cell.text = printable(cell.text);
        if (appearance.text == CharacterSet::ascii) {
            cell.text = asciiOf(cell.text);
        }
    }
    return cells;
}

constexpr std::size_t gap = 2;

/** A longer cell stands out of its column: among thousands of rows it must not widen them all. */
constexpr std::size_t widestColumn = 200;

/** A column that is shown: which one of all, and how wide. */
struct Place {
    std::size_t index = 0;
    std::size_t width = 0;
};

std::size_t widthOf(const std::vector<Place>& places) noexcept {
    std::size_t width = 0;
    for (const auto& place : places) {
        width += place.width + gap;
    }
    return width - std::min(width, gap);
}

std::size_t leastWidthOf(const Place& place, const Table::Column& column) noexcept {
    return column.least == 0 ? place.width : std::min(place.width, column.least);
}

/** Leaves out columns until the rest can be made to fit, or none may be left out. */
void leaveOut(std::vector<Place>& places, const std::vector<Table::Column>& columns,
              std::size_t limit) {
    const auto rank = [&columns](const Place& place) { return columns[place.index].expendable; };
    while (true) {
        auto narrowest = places;
        for (auto& place : narrowest) {
            place.width = leastWidthOf(place, columns[place.index]);
        }
        const auto next = std::max_element(
            places.begin(), places.end(),
            [&rank](const Place& one, const Place& other) { return rank(one) < rank(other); });
        if (widthOf(narrowest) <= limit || rank(*next) == 0) {
            return;
        }
        places.erase(next);
    }
}

/** Takes from the widest of the columns that may be narrowed, until all of them fit. */
void narrow(std::vector<Place>& places, const std::vector<Table::Column>& columns,
            std::size_t limit) {
    while (widthOf(places) > limit) {
        Place* widest = nullptr;
        for (auto& place : places) {
            const bool isNarrowable = place.width > leastWidthOf(place, columns[place.index]);
            if (isNarrowable && (widest == nullptr || place.width > widest->width)) {
                widest = &place;
            }
        }
        if (widest == nullptr) {
            return;
        }
        --widest->width;
    }
}

/** How narrow bars may be beside the columns. */
constexpr std::size_t leastBar = 5;

/** Narrows columns until bars fit beside them; where that cannot be, nothing is narrowed. */
bool makeRoomForBars(std::vector<Place>& places, const std::vector<Table::Column>& columns,
                     std::size_t limit) {
    auto narrowed = places;
    const std::size_t left = limit - std::min(limit, gap + leastBar);
    narrow(narrowed, columns, left);
    if (widthOf(narrowed) > left) {
        return false;
    }
    places = std::move(narrowed);
    return true;
}

std::vector<Place> placesFor(const std::vector<Table::Column>& columns,
                             const std::vector<std::size_t>& widths, std::size_t limit,
                             bool hasBars) {
    std::vector<Place> places;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        places.push_back({i, widths[i]});
    }
    if (limit > 0) {
        leaveOut(places, columns, limit);
        if (hasBars && makeRoomForBars(places, columns, limit)) {
            return places;
        }
        narrow(places, columns, limit);
    }
    return places;
}

std::string cutTo(std::size_t width, const std::string& text, Cut cut, CharacterSet characters) {
    return cut == Cut::front ? shortenedInFront(text, width, characters)
                             : shortened(text, width, characters);
}

/** How wide bars may be beside the columns; 0 where too little is left for one. */
std::size_t barWidthBeside(const std::vector<Place>& places, std::size_t limit) noexcept {
    constexpr std::size_t usual = 20;
    constexpr std::size_t widest = 60;
    if (limit == 0) {
        return usual;
    }
    const auto taken = widthOf(places) + gap;
    const auto left = limit - std::min(limit, taken);
    return left < leastBar ? 0 : std::min(left, widest);
}

std::string line(const std::vector<Table::Column>& columns, const std::vector<Place>& places,
                 const Cells& cells, const std::string& chart, const Appearance& appearance) {
    std::string text;
    std::size_t owed = 0;  // spaces are written only before something visible
    for (const auto& place : places) {
        const auto& cell = cells[place.index];
        const auto& column = columns[place.index];
        const auto shown = appearance.columns == 0
                               ? cell.text
                               : cutTo(place.width, cell.text, column.cut, appearance.drawing);
        const std::size_t padding = place.width - std::min(place.width, displayWidth(shown));
        const bool isRight = column.alignment == Alignment::right;
        owed += isRight ? padding : 0;
        if (!shown.empty()) {
            text.append(owed, ' ');
            text += styled(shown, cell.style, appearance);
            owed = 0;
        }
        owed += (isRight ? 0 : padding) + gap;
    }
    if (!chart.empty()) {
        text.append(owed, ' ');
        text += styled(chart, Style::bar, appearance);
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
    addRow(std::move(cells), Bar{});
}

void Table::addRow(std::vector<Cell> cells, Bar bar) {
    rows_.push_back({std::move(cells), bar});
}

void Table::addHeading(std::string text) {
    rows_.push_back({{std::move(text)}, {}, true});
}

bool Table::fits(const Appearance& appearance) const {
    if (appearance.columns == 0) {
        return true;
    }
    std::vector<Place> places;
    for (const auto width : widthsOf(printableRows(appearance))) {
        places.push_back({places.size(), width});
    }
    return widthOf(places) <= appearance.columns;
}

std::vector<Cells> Table::printableRows(const Appearance& appearance) const {
    std::vector<Cells> rows;
    rows.reserve(rows_.size());
    for (const auto& row : rows_) {
        rows.push_back(printableCells(row.cells, appearance));
    }
    return rows;
}

/** How wide the widest cell of each column is; headings have no part in that. */
std::vector<std::size_t> Table::widthsOf(const std::vector<Cells>& rows) const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t i = 0; i < rows[row].size() && !rows_[row].isHeading; ++i) {
            widths[i] = std::max(widths[i], displayWidth(rows[row][i].text));
        }
    }
    return widths;
}

std::string Table::text(const Appearance& appearance) const {
    const auto rows = printableRows(appearance);
    auto widths = widthsOf(rows);
    if (appearance.columns == 0) {
        std::transform(widths.begin(), widths.end(), widths.begin(),
                       [](std::size_t width) { return std::min(width, widestColumn); });
    }
    const bool hasBars =
        std::any_of(rows_.begin(), rows_.end(), [](const Row& row) { return row.bar.largest > 0; });
    const auto places = placesFor(columns_, widths, appearance.columns, hasBars);
    const auto barWidth = barWidthBeside(places, appearance.columns);
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows_[i].isHeading) {
            text += wrapped(rows[i].front().text, appearance.columns, gap);
            continue;
        }
        const auto& [value, largest] = rows_[i].bar;
        const auto chart = barWidth == 0 ? "" : bar(value, largest, barWidth, appearance.drawing);
        text += line(columns_, places, rows[i], chart, appearance);
    }
    return text;
}

}  // namespace browsersweep::cli
