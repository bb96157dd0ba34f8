#include "cli/TextReport.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/SiteText.h"
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

std::string peopleTextOf(const BrowsersReport& report, const Appearance& appearance) {
    Table table({{"Name"}, {"Browser"}, {"Bundle identifier"}});
    for (const auto& row : report.browsers) {
        table.addRow({row.displayName, std::string(rawValue(row.browser)), row.bundleIdentifier});
    }
    return table.text(appearance);
}

std::string peopleTextOf(const ProfilesReport& report, const Appearance& appearance) {
    Table table({{"Browser"}, {"Profile"}, {"Primary"}});
    for (const auto& row : report.browsers) {
        for (const auto& profile : row.profiles) {
            table.addRow(
                {nameOf(row.browser), displayName(profile), yesOrNothing(profile.isPrimary)});
        }
    }
    return table.text(appearance);
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

std::int64_t byteCount(const std::optional<CleanableDataSize>& size) {
    return size.value_or(CleanableDataSize::zero).byteCount.value;
}

/** Only what was removed has freed anything. */
std::vector<Table::Column> columnsOf(Measure measure) {
    std::vector<Table::Column> columns{{"Browser"},
                                       {"Category"},
                                       {"Items", Alignment::right},
                                       {std::string(sizeHeader(measure)), Alignment::right}};
    if (measure == Measure::removed) {
        columns.push_back({"Freed", Alignment::right});
    }
    columns.push_back({""});
    return columns;
}

/** A size, and what the disk gained. */
struct Figure {
    CleanableDataSize size;
    std::int64_t freedBytes = 0;
};

/** Collects the rows of a report of sizes. All its bars are of one scale. */
class SizesTable {
public:
    SizesTable(const SizesReport& report, const Appearance& appearance)
        : table_(columnsOf(report.measure)),
          appearance_(appearance),
          tellsFreed_(report.measure == Measure::removed) {
        for (const auto& row : report.browsers) {
            largest_ = std::max(largest_, byteCount(row.size));
        }
        for (const auto& row : report.browsers) {
            add(row);
        }
        addSize({"Total", Style::strong}, "", {report.total, report.freedBytes}, Style::strong, "");
    }

    std::string text() const { return table_.text(appearance_); }

private:
    void add(const BrowserSizes& row) {
        const auto name = nameOf(row.browser);
        if (row.error) {
            addFailure(name, "");
            return;
        }
        for (const auto& part : row.categories) {
            const std::string category(displayName(part.category));
            if (part.size) {
                addSize(name, category, {*part.size, part.freedBytes}, Style::plain,
                        barOf(part.size));
            } else {
                addFailure(name, category);
            }
        }
        if (row.size && row.categories.size() > 1) {
            addSize({name, Style::strong}, {"all", Style::strong}, {*row.size, row.freedBytes},
                    Style::strong, barOf(row.size));
        }
    }

    void addSize(Table::Cell browser, Table::Cell category, const Figure& figure, Style style,
                 std::string chart) {
        std::vector<Table::Cell> cells{std::move(browser),
                                       std::move(category),
                                       {countText(figure.size.itemCount), style},
                                       {bytesText(figure.size.byteCount), style}};
        if (tellsFreed_) {
            cells.emplace_back(bytesText({std::max<std::int64_t>(figure.freedBytes, 0)}), style);
        }
        cells.emplace_back(std::move(chart), Style::bar);
        table_.addRow(std::move(cells));
    }

    void addFailure(const std::string& browser, const std::string& category) {
        std::vector<Table::Cell> cells{browser, category, "", {"failed", Style::failure}};
        cells.resize(cells.size() + (tellsFreed_ ? 2 : 1), "");
        table_.addRow(std::move(cells));
    }

    std::string barOf(const std::optional<CleanableDataSize>& size) const {
        return bar(byteCount(size), largest_, barWidth, appearance_.drawing);
    }

    Table table_;
    const Appearance& appearance_;
    bool tellsFreed_;
    std::int64_t largest_ = 0;
};

/** The browsers that have no profile that was asked for. */
std::string emptyBrowsers(const SizesReport& report) {
    const auto names = namesOfEmptyBrowsers(report);
    return names.empty() ? "" : fmt::format("No data found: {}", fmt::join(names, ", "));
}

std::string legend(const CleanableDataSize& total) {
    const bool isNeeded = total.itemCount.isApproximate || total.byteCount.isApproximate;
    return isNeeded ? "~ approximate: databases count with their whole file" : "";
}

std::string remark(const std::string& text, const Appearance& appearance) {
    return text.empty() ? "" : styled(text, Style::faint, appearance) + "\n";
}

std::string peopleTextOf(const SizesReport& report, const Appearance& appearance) {
    return SizesTable(report, appearance).text() + remark(emptyBrowsers(report), appearance) +
           remark(legend(report.total), appearance);
}

std::string peopleTextOf(const BookmarksReport& report, const Appearance& appearance) {
    Table table({{"Browser"}, {"Name"}, {"Address"}});
    for (const auto& row : report.browsers) {
        for (const auto& bookmark : row.bookmarks) {
            table.addRow(
                {nameOf(row.browser), bookmark.name.value_or(""), bookmark.url.absoluteString()});
        }
    }
    return table.text(appearance);
}

std::string peopleTextOf(const NotificationsReport& report, const Appearance& appearance) {
    Table table({{"Browser"}, {"Profile"}, {"Site"}, {"Stored in"}});
    for (const auto& row : report.browsers) {
        for (const auto& part : row.profiles) {
            for (const auto& subscription : part.subscriptions) {
                table.addRow({nameOf(row.browser), displayName(part.profile),
                              subscription.sourceURL, subscription.store.string()});
            }
        }
    }
    return table.text(appearance);
}

std::string peopleTextOf(const SiteListReport& report, const Appearance& appearance) {
    return peopleText(report, appearance);
}

std::string peopleTextOf(const ForgetReport& report, const Appearance& appearance) {
    return peopleText(report, appearance);
}

}  // namespace

std::string peopleText(const Report& report, const Appearance& appearance) {
    return std::visit([&](const auto& any) { return peopleTextOf(any, appearance); }, report);
}

}  // namespace browsersweep::cli
