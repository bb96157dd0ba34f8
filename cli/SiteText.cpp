#include "cli/SiteText.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/HeadedTable.h"
#include "cli/ProfileLabels.h"
#include "cli/Remark.h"
#include "cli/Table.h"
#include "cli/Text.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t leastSite = 12;
constexpr std::size_t leastName = 8;
/** A table of more sites tells of each kind how many there are. */
constexpr std::size_t mostSitesInDetail = 20;
constexpr std::string_view anySite = "(any site)";

bool isApproximate(const CleanableDataSize& size) noexcept {
    return size.itemCount.isApproximate || size.byteCount.isApproximate;
}

template <typename Rows>
bool isAnyApproximate(const Rows& rows) {
    return std::any_of(rows.begin(), rows.end(),
                       [](const auto& row) { return isApproximate(row.size); });
}

template <typename AnyReport>
std::string legend(const std::vector<SiteRow>& sites, const AnyReport& report) {
    return isAnyApproximate(sites) || isAnyApproximate(report.notBySite)
               ? "~ approximate: files are shared by sites, or counted in part"
               : "";
}

std::string countOf(std::size_t count, std::string_view thing) {
    return fmt::format("{} {}{}", countText({static_cast<std::int64_t>(count)}), thing,
                       count == 1 ? "" : "s");
}

std::string sitesTable(const SiteListReport& report, const Appearance& appearance) {
    Table table({{"Site", Alignment::left, leastSite},
                 {"Browsers", Alignment::left, leastName, 2},
                 {"Items", Alignment::right, 0, 1},
                 {"Size", Alignment::right},
                 {"Last use"}});
    for (const auto& row : report.sites) {
        table.addRow({row.site, browsersOf(row), countText(row.size.itemCount),
                      bytesText(row.size.byteCount), row.lastUsed ? dayText(*row.lastUsed) : ""});
    }
    return table.text(appearance);
}

Table::Column kindColumn(std::string_view header) {
    return {std::string(header), Alignment::left, leastName};
}

Table::Cell countCell(std::size_t count, Style style = Style::plain) {
    return {countText({static_cast<std::int64_t>(count)}), style};
}

HeadedTable::Row tableRow(const std::string& site, const SiteOwner& owner, std::string_view kind,
                          const CleanableDataSize& size) {
    return {site,
            displayName(owner),
            {std::string(kind), countText(size.itemCount), bytesText(size.byteCount)}};
}

std::string mixedTable(const SiteListReport& report, const Appearance& appearance) {
    HeadedTable table({kindColumn("Of no single site"),
                       {"Items", Alignment::right, 0, 1},
                       {"Size", Alignment::right}},
                      1);
    for (const auto& row : report.notBySite) {
        table.addRow(tableRow("", row.owner, row.kind.display, row.size));
    }
    return table.text(appearance);
}

Table::Column figureColumn(const ForgetReport& report) {
    return {report.isPlan ? "To be removed" : "Removed", Alignment::right};
}

std::vector<Table::Cell> figuresOf(const CleanableDataSize& total) {
    return {{countText(total.itemCount), Style::strong},
            {bytesText(total.byteCount), Style::strong}};
}

/** A row for each site, kind and profile. */
std::string detailTable(const ForgetReport& report, const Appearance& appearance) {
    HeadedTable table({kindColumn("Kind"), {"Items", Alignment::right, 0, 1}, figureColumn(report)},
                      1);
    for (const auto& site : report.forgotten) {
        for (const auto& row : site.traces) {
            table.addRow(tableRow(site.site, row.owner, row.kind.display, row.size));
        }
    }
    for (const auto& row : report.notBySite) {
        table.addRow(tableRow(std::string(anySite), row.owner, row.kind.display, row.size));
    }
    table.addTotal(figuresOf(report.total));
    return table.text(appearance);
}

/** How much of one kind went from one profile. */
struct KindSum {
    SiteOwner owner;
    std::string_view kind;
    std::size_t sites = 0;
    CleanableDataSize size;
};

/** The sums by profile and kind. */
auto sumsOf(const ForgetReport& report) {
    using Key = std::tuple<Browser, std::optional<std::string>, std::optional<std::string>,
                           std::string_view>;
    std::map<Key, KindSum> sums;
    const auto sumOf = [&sums](const SiteOwner& owner, const KindName& kind) -> KindSum& {
        auto& sum = sums[{owner.browser, owner.folder, owner.profile, kind.display}];
        sum.owner = owner;
        sum.kind = kind.display;
        return sum;
    };
    for (const auto& site : report.forgotten) {
        for (const auto& row : site.traces) {
            auto& sum = sumOf(row.owner, row.kind);
            sum.size = sum.size + row.size;
            ++sum.sites;
        }
    }
    for (const auto& row : report.notBySite) {
        auto& sum = sumOf(row.owner, row.kind);
        sum.size = sum.size + row.size;
    }
    return sums;
}

/** A row for each kind and profile, where there are too many sites to name. */
std::string summaryTable(const ForgetReport& report, const Appearance& appearance) {
    HeadedTable table({kindColumn("Kind"),
                       {"Sites", Alignment::right},
                       {"Items", Alignment::right, 0, 1},
                       figureColumn(report)},
                      0);
    for (const auto& [key, sum] : sumsOf(report)) {
        auto row = tableRow("", sum.owner, sum.kind, sum.size);
        row.cells.insert(row.cells.begin() + 1, countCell(sum.sites));
        table.addRow(std::move(row));
    }
    auto total = figuresOf(report.total);
    total.insert(total.begin(), countCell(report.forgotten.size(), Style::strong));
    table.addTotal(std::move(total));
    return table.text(appearance);
}

std::string goneText(const ForgetReport& report, const Appearance& appearance) {
    if (report.forgotten.empty() && report.notBySite.empty()) {
        return remark(report.isPlan ? "Nothing would be removed." : "Nothing was removed.",
                      appearance);
    }
    return report.forgotten.size() > mostSitesInDetail ? summaryTable(report, appearance)
                                                       : detailTable(report, appearance);
}

constexpr std::size_t indentOfWhy = 4;
constexpr std::size_t indentOfPlace = 8;

/**
 * Where something is: a path that is too long for a terminal is cut at its front. It has a line of
 * its own where too little of it would be left.
 */
std::string placeLine(std::string_view start, const SiteOwner& owner, const std::string& what,
                      const Appearance& appearance) {
    constexpr std::size_t leastPath = 16;
    const auto columns = appearance.columns;
    const auto whose = fmt::format("{}{}: ", start, printable(displayName(owner)));
    const auto path = printable(what);
    if (columns == 0) {
        return whose + path + "\n";
    }
    const auto room = columns - std::min(columns, displayWidth(whose));
    if (room >= std::min(leastPath, displayWidth(path))) {
        return whose + shortenedInFront(path, room, appearance.drawing) + "\n";
    }
    return wrapped(whose, columns, indentOfPlace) + std::string(indentOfPlace, ' ') +
           shortenedInFront(path, columns - std::min(columns, indentOfPlace), appearance.drawing) +
           "\n";
}

/** What stays, each reason once with all the places that it stays in. */
std::string keptText(const ForgetReport& report, const Appearance& appearance) {
    const auto columns = appearance.columns;
    std::vector<std::pair<std::string, std::string>> reasons;
    for (const auto& row : report.kept) {
        auto reason = wrapped(fmt::format("  {}: {}", row.kind.display, printable(row.why)),
                              columns, indentOfWhy);
        auto place = placeLine("      ", row.owner, row.what, appearance);
        const auto found = std::find_if(reasons.begin(), reasons.end(),
                                        [&](const auto& each) { return each.first == reason; });
        if (found == reasons.end()) {
            reasons.emplace_back(std::move(reason), std::move(place));
        } else {
            found->second += place;
        }
    }
    std::string text = reasons.empty() ? "" : "Stays:\n";
    for (const auto& [reason, places] : reasons) {
        text += reason + places;
    }
    for (const auto& hint : report.hints) {
        text += wrapped(hint, appearance.columns);
    }
    return text;
}

std::string remainsText(const ForgetReport& report, const Appearance& appearance) {
    std::string text;
    for (const auto& row : report.stores) {
        if (!row.isWithoutRemains) {
            text += placeLine("  ", row.owner, row.what, appearance);
        }
    }
    return text.empty() ? ""
                        : wrapped(
                              "The disk had no room to rewrite these files, so they may still "
                              "hold remains of what was removed:",
                              appearance.columns) +
                              text;
}

std::string freedText(const ForgetReport& report) {
    if (report.isPlan || report.freedBytes <= 0) {
        return {};
    }
    return fmt::format("The disk gained {}.", bytesText({report.freedBytes}));
}

}  // namespace

std::string displayName(const SiteOwner& owner) {
    const std::string browser(displayName(owner.browser));
    if (owner.profile) {
        return browser + ", " + labelOf(*owner.profile, owner.folder, owner.isNameShared);
    }
    return owner.folder ? browser + ", " + *owner.folder : browser;
}

std::string browsersOf(const SiteRow& row) {
    std::vector<std::string_view> names;
    for (const auto& trace : row.traces) {
        const auto name = displayName(trace.owner.browser);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string peopleText(const SiteListReport& report, const Appearance& appearance) {
    std::string text = report.sites.empty() ? remark("No traces of sites were found.", appearance)
                                            : sitesTable(report, appearance);
    if (!report.notBySite.empty()) {
        text += "\n" + mixedTable(report, appearance);
    }
    if (report.sites.size() > 1) {
        text += remark(countOf(report.sites.size(), "site"), appearance);
    }
    return text + remark(legend(report.sites, report), appearance);
}

std::string peopleText(const ForgetReport& report, const Appearance& appearance) {
    return goneText(report, appearance) + keptText(report, appearance) +
           remainsText(report, appearance) + remark(freedText(report), appearance) +
           remark(legend(report.forgotten, report), appearance);
}

}  // namespace browsersweep::cli
