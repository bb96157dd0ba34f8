#include "cli/SizesText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "cli/CategoryResult.h"
#include "cli/Figures.h"
#include "cli/Remark.h"
#include "cli/Table.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t leastName = 8;

/** A row of the table before it is put in order. */
struct Line {
    std::string name;
    std::string part;  ///< the profile, where rows are about profiles
    CleanableDataSize size;
    std::int64_t freedBytes = 0;
    bool lacksSomething = false;  ///< something that failed is not in the figures
    std::vector<ItemRow> items{};
};

bool isZero(const CleanableDataSize::Measurement& figure) noexcept {
    return figure.value == 0 && !figure.isApproximate;
}

bool isNothing(const Line& line) noexcept {
    return isZero(line.size.itemCount) && isZero(line.size.byteCount) && line.freedBytes == 0 &&
           !line.lacksSomething && resultOf(line.items).isSuccess;
}

bool isAnyFailed(const std::vector<CategorySize>& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [](const CategorySize& part) { return part.error.has_value(); });
}

void add(const CategorySize& part, Line& line) {
    line.size = line.size + part.size.value_or(CleanableDataSize::zero);
    line.freedBytes += part.freedBytes;
    line.lacksSomething |= part.error.has_value();
    line.items.insert(line.items.end(), part.items.begin(), part.items.end());
}

std::vector<Line> linesOfBrowsers(const SizesReport& report) {
    std::vector<Line> lines;
    for (const auto& row : report.browsers) {
        lines.push_back({std::string(displayName(row.browser)), "",
                         row.size.value_or(CleanableDataSize::zero), row.freedBytes,
                         row.error || isAnyFailed(row.categories)});
        for (const auto& part : row.categories) {
            lines.back().items.insert(lines.back().items.end(), part.items.begin(),
                                      part.items.end());
        }
    }
    return lines;
}

std::vector<Line> linesOfCategories(const SizesReport& report) {
    std::vector<Line> lines;
    for (const auto category : allCleanableDataCategories) {
        Line line{std::string(displayName(category)), "", {}, 0, false};
        bool isKnown = false;
        for (const auto& row : report.browsers) {
            for (const auto& part : row.categories) {
                if (part.category == category) {
                    add(part, line);
                    isKnown = true;
                }
            }
        }
        if (isKnown) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

std::vector<Line> linesOfProfiles(const SizesReport& report) {
    std::vector<Line> lines;
    for (const auto& row : report.browsers) {
        const std::string browser(displayName(row.browser));
        for (const auto& profile : row.profiles) {
            Line line{browser, displayName(profile.profile), {}, 0, false};
            for (const auto& part : profile.categories) {
                add(part, line);
            }
            lines.push_back(std::move(line));
        }
        if (row.error) {
            lines.push_back({browser, "", {}, 0, true});
        }
    }
    return lines;
}

std::vector<Line> linesOf(const SizesReport& report, Grouping grouping) {
    switch (grouping) {
        case Grouping::browser:
            return linesOfBrowsers(report);
        case Grouping::category:
            return linesOfCategories(report);
        case Grouping::profile:
            return linesOfProfiles(report);
    }
    return {};
}

/** For the alphabet as people know it: letter case aside. */
std::string keyOf(const Line& line) {
    std::string key = line.name + "\n" + line.part;
    std::transform(key.begin(), key.end(), key.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return key;
}

void sort(std::vector<Line>& lines, Order order) {
    std::stable_sort(lines.begin(), lines.end(), [order](const Line& one, const Line& other) {
        if (order == Order::name) {
            return keyOf(one) < keyOf(other);
        }
        const auto figure =
            order == Order::items ? &CleanableDataSize::itemCount : &CleanableDataSize::byteCount;
        return (one.size.*figure).value > (other.size.*figure).value;
    });
}

std::string_view sizeHeader(Measure measure) noexcept {
    switch (measure) {
        case Measure::present:
            return "Size";
        case Measure::removed:
            return "Removed";
        case Measure::wouldBeRemoved:
            return "To be removed";
    }
    return "";
}

/** Only what was removed has freed anything, and tells what became of it. */
std::vector<Table::Column> columnsOf(Measure measure, Grouping grouping) {
    std::vector<Table::Column> columns{
        {grouping == Grouping::category ? "Category" : "Browser", Alignment::left, leastName}};
    if (grouping == Grouping::profile) {
        columns.push_back({"Profile", Alignment::left, leastName});
    }
    columns.push_back({"Items", Alignment::right, 0, 1});
    columns.push_back({std::string(sizeHeader(measure)), Alignment::right});
    if (measure == Measure::removed) {
        columns.push_back({"Freed", Alignment::right});
        columns.push_back({"Result", Alignment::left, leastName});
    }
    return columns;
}

/** Puts lines into a table. All its bars are of one scale. */
class SizesTable {
public:
    SizesTable(Measure measure, Grouping grouping)
        : table_(columnsOf(measure, grouping)),
          tellsProfiles_(grouping == Grouping::profile),
          tellsFreed_(measure == Measure::removed) {}

    void add(const std::vector<Line>& lines) {
        std::int64_t largest = 0;
        for (const auto& line : lines) {
            largest = std::max(largest, line.size.byteCount.value);
        }
        for (const auto& line : lines) {
            add(line, Style::plain, {line.size.byteCount.value, largest});
        }
    }

    void addTotal(const Line& total) { add(total, Style::strong, {}); }

    std::string text(const Appearance& appearance) const { return table_.text(appearance); }

private:
    void add(const Line& line, Style style, Table::Bar bar) {
        std::vector<Table::Cell> cells{{line.name, style}};
        if (tellsProfiles_) {
            cells.emplace_back(line.part, style);
        }
        addFigures(line, style, cells);
        table_.addRow(std::move(cells), bar);
    }

    void addFigures(const Line& line, Style style, std::vector<Table::Cell>& cells) const {
        auto [items, bytes] = line.size;
        if (line.lacksSomething && items.value == 0 && bytes.value == 0) {
            cells.emplace_back("");
            cells.emplace_back("failed", Style::failure);
            cells.resize(cells.size() + (tellsFreed_ ? 1 : 0), "");
            addResult(line, cells);
            return;
        }
        items.isApproximate |= line.lacksSomething;
        bytes.isApproximate |= line.lacksSomething;
        cells.emplace_back(countText(items), style);
        cells.emplace_back(bytesText(bytes), style);
        if (tellsFreed_) {
            cells.emplace_back(bytesText({std::max<std::int64_t>(line.freedBytes, 0)}), style);
        }
        addResult(line, cells);
    }

    void addResult(const Line& line, std::vector<Table::Cell>& cells) const {
        if (tellsFreed_) {
            const auto result = resultOf(line.items);
            cells.emplace_back(result.text, result.isSuccess ? Style::plain : Style::failure);
        }
    }

    Table table_;
    bool tellsProfiles_;
    bool tellsFreed_;
};

Grouping groupingOf(const SizesReport& report, const SizesView& view) noexcept {
    constexpr std::size_t one = 1;
    return view.grouping.value_or(report.browsers.size() == one ? Grouping::category
                                                                : Grouping::browser);
}

Line totalOf(const SizesReport& report) {
    const bool isAnyMissing = std::any_of(
        report.browsers.begin(), report.browsers.end(),
        [](const BrowserSizes& row) { return row.error || isAnyFailed(row.categories); });
    return {"Total", "", report.total, report.freedBytes, isAnyMissing};
}

/** How many rows are left out because they are nothing. */
std::string hiddenText(std::size_t count, Grouping grouping, bool isAnyShown) {
    constexpr std::array singular{"browser", "category", "profile"};
    constexpr std::array plural{"browsers", "categories", "profiles"};
    const auto& names = count == 1 ? singular : plural;
    return count == 0
               ? ""
               : fmt::format("Nothing in {}{} {}; --all shows {}", count, isAnyShown ? " more" : "",
                             names.at(static_cast<std::size_t>(grouping)),
                             count == 1 ? "it" : "them");
}

std::string legendOf(const Line& total) {
    const auto& [items, bytes] = total.size;
    const bool isApproximate = items.isApproximate || bytes.isApproximate;
    if (!isApproximate && !total.lacksSomething) {
        return {};
    }
    return fmt::format("~ approximate: {}{}{}",
                       isApproximate ? "databases count with their whole file" : "",
                       isApproximate && total.lacksSomething ? ", and " : "",
                       total.lacksSomething ? "what failed is not counted" : "");
}

}  // namespace

std::string sizesText(const SizesReport& report, const SizesView& view,
                      const Appearance& appearance) {
    const auto grouping = groupingOf(report, view);
    auto lines = linesOf(report, grouping);
    const auto hidden = view.showsZeros ? 0 : std::erase_if(lines, isNothing);
    sort(lines, view.order);
    const auto total = totalOf(report);
    SizesTable table(report.measure, grouping);
    table.add(lines);
    table.addTotal(total);
    return table.text(appearance) +
           remark(view.offersZeros ? hiddenText(hidden, grouping, !lines.empty()) : "",
                  appearance) +
           remark(legendOf(total), appearance);
}

}  // namespace browsersweep::cli
