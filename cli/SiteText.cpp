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

std::string mixedTable(const SiteListReport& report, const Appearance& appearance) {
    Table table({{"Of no single site", Alignment::left, leastSite},
                 {"Where", Alignment::left, leastName, 2},
                 {"Items", Alignment::right, 0, 1},
                 {"Size", Alignment::right}});
    for (const auto& row : report.notBySite) {
        table.addRow({std::string(row.kind.display), displayName(row.owner),
                      countText(row.size.itemCount), bytesText(row.size.byteCount)});
    }
    return table.text(appearance);
}

std::string_view figureHeader(const ForgetReport& report) noexcept {
    return report.isPlan ? "To be removed" : "Removed";
}

/** A terminal that is narrow has no room to repeat the name of the only site. */
bool tellsSites(const ForgetReport& report, const Appearance& appearance) noexcept {
    constexpr std::size_t wideEnough = 60;
    const bool isNarrow = appearance.columns > 0 && appearance.columns < wideEnough;
    return !isNarrow || report.forgotten.size() > 1 || !report.notBySite.empty();
}

std::vector<Table::Column> detailColumns(const ForgetReport& report, bool areSitesTold) {
    std::vector<Table::Column> columns{{"Kind", Alignment::left, leastName},
                                       {"Where", Alignment::left, leastName, 1},
                                       {"Items", Alignment::right, 0, 2},
                                       {std::string(figureHeader(report)), Alignment::right}};
    if (areSitesTold) {
        columns.insert(columns.begin(), {"Site", Alignment::left, leastSite});
    }
    return columns;
}

std::vector<Table::Cell> totalOf(const ForgetReport& report, bool areSitesTold) {
    std::vector<Table::Cell> cells{{"Total", Style::strong}, ""};
    cells.resize(cells.size() + (areSitesTold ? 1 : 0), "");
    cells.emplace_back(countText(report.total.itemCount), Style::strong);
    cells.emplace_back(bytesText(report.total.byteCount), Style::strong);
    return cells;
}

/** A row for each site, kind and profile. */
std::string detailTable(const ForgetReport& report, const Appearance& appearance) {
    const bool areSitesTold = tellsSites(report, appearance);
    Table table(detailColumns(report, areSitesTold));
    const auto add = [&table, areSitesTold](const std::string& site, const auto& row) {
        std::vector<Table::Cell> cells;
        if (areSitesTold) {
            cells.emplace_back(site);
        }
        cells.emplace_back(std::string(row.kind.display));
        cells.emplace_back(displayName(row.owner));
        cells.emplace_back(countText(row.size.itemCount));
        cells.emplace_back(bytesText(row.size.byteCount));
        table.addRow(std::move(cells));
    };
    for (const auto& site : report.forgotten) {
        for (const auto& row : site.traces) {
            add(site.site, row);
        }
    }
    for (const auto& row : report.notBySite) {
        add(std::string(anySite), row);
    }
    table.addRow(totalOf(report, areSitesTold));
    return table.text(appearance);
}

/** How much of one kind went from one profile. */
struct KindSum {
    SiteOwner owner;
    std::string_view kind;
    std::size_t sites = 0;
    CleanableDataSize size;
};

/** A row for each kind and profile, where there are too many sites to name. */
std::string summaryTable(const ForgetReport& report, const Appearance& appearance) {
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
    Table table({{"Where", Alignment::left, leastName, 1},
                 {"Kind", Alignment::left, leastName},
                 {"Sites", Alignment::right},
                 {"Items", Alignment::right, 0, 2},
                 {std::string(figureHeader(report)), Alignment::right}});
    for (const auto& [key, sum] : sums) {
        table.addRow({displayName(sum.owner), std::string(sum.kind),
                      countText({static_cast<std::int64_t>(sum.sites)}),
                      countText(sum.size.itemCount), bytesText(sum.size.byteCount)});
    }
    table.addRow({{"Total", Style::strong},
                  "",
                  {countText({static_cast<std::int64_t>(report.forgotten.size())}), Style::strong},
                  {countText(report.total.itemCount), Style::strong},
                  {bytesText(report.total.byteCount), Style::strong}});
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

/** Where something is, on one line: a path that is too long for a terminal is cut at its front. */
std::string placeLine(std::string_view start, const SiteOwner& owner, const std::string& what,
                      const Appearance& appearance) {
    constexpr std::size_t leastPath = 16;
    const auto columns = appearance.columns;
    const auto whose = fmt::format("{}{}: ", start, printable(displayName(owner)));
    const auto path = printable(what);
    const auto room = columns - std::min(columns, displayWidth(whose));
    return room < leastPath ? wrapped(whose + path, columns, indentOfPlace)
                            : whose + shortenedInFront(path, room, appearance.drawing) + "\n";
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
                              "The disk had no room to write these files anew, so remains of "
                              "what went may be left in them:",
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
