#include "cli/TextReport.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/Table.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t barWidth = 20;

std::string nameOf(Browser browser) {
    return std::string(displayName(browser));
}

std::string yesOrNothing(bool value) {
    return value ? "yes" : "";
}

std::string peopleTextOf(const BrowsersReport& report) {
    Table table({{"Name"}, {"Browser"}, {"Bundle identifier"}});
    for (const auto& row : report.browsers) {
        table.addRow({row.displayName, std::string(rawValue(row.browser)), row.bundleIdentifier});
    }
    return table.text();
}

std::string peopleTextOf(const ProfilesReport& report) {
    Table table({{"Browser"}, {"Profile"}, {"Primary"}});
    for (const auto& row : report.browsers) {
        for (const auto& profile : row.profiles) {
            table.addRow(
                {nameOf(row.browser), displayName(profile), yesOrNothing(profile.isPrimary)});
        }
    }
    return table.text();
}

std::int64_t largestByteCount(const SizesReport& report) {
    std::int64_t largest = 0;
    for (const auto& row : report.browsers) {
        for (const auto& part : row.categories) {
            largest =
                std::max(largest, part.size.value_or(CleanableDataSize::zero).byteCount.value);
        }
    }
    return largest;
}

void addSize(const std::string& browser, const std::string& category, const CleanableDataSize& size,
             const std::string& chart, Table& table) {
    table.addRow({browser, category, countText(size.itemCount), bytesText(size.byteCount), chart});
}

void addCategories(const BrowserSizes& row, std::int64_t largest, Table& table) {
    for (const auto& part : row.categories) {
        const std::string category(displayName(part.category));
        if (part.size) {
            addSize(nameOf(row.browser), category, *part.size,
                    bar(part.size->byteCount.value, largest, barWidth), table);
        } else {
            table.addRow({nameOf(row.browser), category, "", "failed", ""});
        }
    }
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

/** The browsers that have no profile that was asked for. */
std::string emptyBrowsers(const SizesReport& report) {
    std::vector<std::string_view> names;
    for (const auto& row : report.browsers) {
        if (!row.error && row.categories.empty()) {
            names.push_back(displayName(row.browser));
        }
    }
    return names.empty() ? "" : fmt::format("No data found: {}\n", fmt::join(names, ", "));
}

std::string legend(const CleanableDataSize& total) {
    const bool isNeeded = total.itemCount.isApproximate || total.byteCount.isApproximate;
    return isNeeded ? "~ approximate: databases count with their whole file\n" : "";
}

std::string peopleTextOf(const SizesReport& report) {
    Table table({{"Browser"},
                 {"Category"},
                 {"Items", Alignment::right},
                 {std::string(sizeHeader(report.measure)), Alignment::right},
                 {""}});
    const auto largest = largestByteCount(report);
    for (const auto& row : report.browsers) {
        addCategories(row, largest, table);
        if (row.error) {
            table.addRow({nameOf(row.browser), "", "", "failed", ""});
        } else if (row.size && row.categories.size() > 1) {
            addSize(nameOf(row.browser), "all", *row.size, "", table);
        }
    }
    addSize("Total", "", report.total, "", table);
    return table.text() + emptyBrowsers(report) + legend(report.total);
}

std::string peopleTextOf(const BookmarksReport& report) {
    Table table({{"Browser"}, {"Name"}, {"Address"}});
    for (const auto& row : report.browsers) {
        for (const auto& bookmark : row.bookmarks) {
            table.addRow(
                {nameOf(row.browser), bookmark.name.value_or(""), bookmark.url.absoluteString()});
        }
    }
    return table.text();
}

std::string peopleTextOf(const NotificationsReport& report) {
    Table table({{"Browser"}, {"Profile"}, {"Site"}, {"Stored in"}});
    for (const auto& row : report.browsers) {
        for (const auto& part : row.profiles) {
            for (const auto& subscription : part.subscriptions) {
                table.addRow({nameOf(row.browser), displayName(part.profile),
                              subscription.sourceURL, subscription.store.string()});
            }
        }
    }
    return table.text();
}

}  // namespace

std::string peopleText(const Report& report) {
    return std::visit([](const auto& any) { return peopleTextOf(any); }, report);
}

}  // namespace browsersweep::cli
