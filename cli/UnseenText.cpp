#include "cli/UnseenText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <variant>

#include <fmt/format.h>

#include "cli/Figures.h"
#include "cli/FilterText.h"
#include "cli/LocalDays.h"
#include "cli/Table.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

/** What of a category the filters cannot see. */
struct Sum {
    CleanableDataSize size;
    FilterSight blindTo;
    bool isAny = false;
    bool isKnown = true;
};

Sum sumOf(const CategorySize& part) {
    Sum sum;
    for (const ItemRow& item : part.items) {
        const bool isNothing = !item.unseen || item.unseen->size == CleanableDataSize::zero;
        if (isNothing) {
            continue;
        }
        sum.isAny = true;
        sum.isKnown &= item.unseen->size.has_value();
        sum.size = sum.size + item.unseen->size.value_or(CleanableDataSize::zero);
        sum.blindTo = sum.blindTo.with(item.unseen->blindTo);
    }
    return sum;
}

/** "?" where nothing of it could be measured. */
std::string shown(const Sum& sum, const std::string& figure) {
    return sum.isKnown || sum.size != CleanableDataSize::zero ? figure : "?";
}

std::string tableOf(const SizesReport& report, const Appearance& appearance) {
    // Narrow enough for 40 columns; the name of a browser that is the only one says least.
    constexpr std::size_t leastBrowser = 6;
    constexpr std::size_t leastCategory = 7;
    const int expendable = report.browsers.size() == 1 ? 2 : 0;
    Table table({{"Browser", Alignment::left, leastBrowser, expendable},
                 {"Category", Alignment::left, leastCategory},
                 {"Items", Alignment::right, 0, 1},
                 {"Size", Alignment::right},
                 {"Has no"}});
    for (const BrowserSizes& row : report.browsers) {
        for (const CategorySize& part : row.categories) {
            const Sum sum = sumOf(part);
            if (sum.isAny) {
                table.addRow({std::string(displayName(row.browser)),
                              std::string(displayName(part.category)),
                              shown(sum, countText(sum.size.itemCount)),
                              shown(sum, bytesText(sum.size.byteCount)), sightText(sum.blindTo)});
            }
        }
    }
    return table.text(appearance);
}

bool isAnyUnseen(const SizesReport& report) {
    for (const BrowserSizes& row : report.browsers) {
        for (const CategorySize& part : row.categories) {
            if (sumOf(part).isAny) {
                return true;
            }
        }
    }
    return false;
}

std::string_view headingOf(const SizesReport& report) noexcept {
    if (!report.unseen->isTaken) {
        return "The filters cannot see this, which is left out (--strict):";
    }
    switch (report.measure) {
        case Measure::present:
            return "The filters cannot see this, which counts whole (--strict leaves it out):";
        case Measure::removed:
            return "The filters could not see this, which went whole:";
        case Measure::wouldBeRemoved:
            return "The filters cannot see this, which goes whole (--strict leaves it out):";
    }
    return "";
}

bool hasBounds(const CleanableDataFilter& filter) {
    const auto& dates = filter.datesData;
    return dates && (dates->startDate || dates->endDate);
}

bool isOfChromium(const BrowserSizes& row, CleanableDataCategory category) {
    return row.browser != Browser::firefox && row.browser != Browser::safari &&
           std::any_of(row.categories.begin(), row.categories.end(),
                       [category](const CategorySize& part) { return part.category == category; });
}

/** Dates that say one thing and do another on some history are not left without a word. */
std::string shiftText(const SizesReport& report, std::size_t columns) {
    const bool isAnyHistory = std::any_of(
        report.browsers.begin(), report.browsers.end(),
        [](const BrowserSizes& row) { return isOfChromium(row, CleanableDataCategory::history); });
    const double ahead = hoursAheadIn1601();
    const double hours = std::round(2 * std::fabs(ahead)) / 2;
    if (!isAnyHistory || hours == 0 ||
        std::none_of(report.filters.begin(), report.filters.end(), hasBounds)) {
        return "";
    }
    return wrapped(
        fmt::format(
            "In the history of Chrome and its family, dates take effect about {:g} hour{} {}.",
            hours, hours == 1 ? "" : "s", ahead > 0 ? "later" : "earlier"),
        columns);
}

/** How much of all that is. */
std::string shareOf(const SizesReport& report, std::size_t columns) {
    const auto& part = report.unseen->size;
    if (!report.unseen->isTaken) {
        return "";
    }
    return wrapped(fmt::format("That is {} of {} items, and {} of {}.", countText(part.itemCount),
                               countText(report.total.itemCount), bytesText(part.byteCount),
                               bytesText(report.total.byteCount)),
                   columns);
}

}  // namespace

std::string filtersText(const SizesReport& report, const Appearance& appearance) {
    std::string text;
    for (const std::string& each : filterTexts(report.filters)) {
        text += wrapped("Filter: " + each, appearance.columns);
    }
    text += shiftText(report, appearance.columns);
    if (report.unseen && isAnyUnseen(report)) {
        text += "\n" + wrapped(headingOf(report), appearance.columns) +
                tableOf(report, appearance) + shareOf(report, appearance.columns);
    }
    return text;
}

std::string unseenRemark(const Report& plan, const Appearance& appearance) {
    const auto* const sizes = std::get_if<SizesReport>(&plan);
    if (sizes == nullptr || !sizes->unseen || !sizes->unseen->isTaken || !isAnyUnseen(*sizes)) {
        return "";
    }
    const auto& [items, bytes] = sizes->unseen->size;
    return wrapped(fmt::format("The filters cannot see {} items ({}) of this.", countText(items),
                               bytesText(bytes)),
                   appearance.columns);
}

}  // namespace browsersweep::cli
