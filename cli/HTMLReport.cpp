#include "cli/HTMLReport.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/HTMLPieces.h"
#include "cli/SiteHTML.h"
#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

std::int64_t bytesOf(const std::optional<CleanableDataSize>& size) noexcept {
    return size ? size->byteCount.value : 0;
}

/** The share of the whole in percent; at least so much that any share is seen. */
double percentage(std::int64_t part, std::int64_t whole) noexcept {
    constexpr double all = 100;
    constexpr double smallest = 0.5;
    if (part <= 0 || whole <= 0) {
        return 0;
    }
    return std::clamp(all * static_cast<double>(part) / static_cast<double>(whole), smallest, all);
}

/** One line of a chart: a name, a value, and below them a bar that says nothing more. */
std::string chartLine(std::string_view name, const std::optional<CleanableDataSize>& size,
                      std::int64_t whole) {
    return fmt::format(
        "<li><span class=\"name\">{}</span> <span class=\"value{}\">{}</span>\n"
        "<svg aria-hidden=\"true\" focusable=\"false\" width=\"100%\" height=\"10\">"
        "<rect class=\"track\" width=\"100%\" height=\"100%\" rx=\"3\"/>"
        "<rect class=\"bar\" width=\"{:.2f}%\" height=\"100%\" rx=\"3\"/></svg></li>\n",
        isolated(name), size ? "" : " failed", size ? bytesText(size->byteCount) : "failed",
        percentage(bytesOf(size), whole));
}

std::string chart(const std::vector<std::string>& lines) {
    return fmt::format("<ul class=\"chart\">\n{}</ul>\n", fmt::join(lines, ""));
}

/** Rows of any kind with the largest first. */
template <typename Row, typename SizeOf>
std::vector<const Row*> largestFirst(const std::vector<Row>& rows, const SizeOf& sizeOf) {
    std::vector<const Row*> order;
    order.reserve(rows.size());
    for (const auto& row : rows) {
        order.push_back(&row);
    }
    std::stable_sort(order.begin(), order.end(), [&sizeOf](const Row* one, const Row* other) {
        return bytesOf(sizeOf(*one)) > bytesOf(sizeOf(*other));
    });
    return order;
}

std::vector<const BrowserSizes*> browsersOf(const SizesReport& report) {
    return largestFirst(report.browsers, [](const BrowserSizes& row) { return row.size; });
}

bool hasFigures(const BrowserSizes& row) noexcept {
    return !row.error && !row.categories.empty();
}

std::string overview(const SizesReport& report) {
    std::vector<std::string> lines;
    for (const auto* const row : browsersOf(report)) {
        if (row->error || hasFigures(*row)) {
            lines.push_back(
                chartLine(displayName(row->browser), row->size, report.total.byteCount.value));
        }
    }
    if (lines.empty()) {
        return "<p>No data was found.</p>\n";
    }
    return fmt::format(
        "<figure>\n{}<figcaption>The full width of a bar is the total of all browsers."
        "</figcaption>\n</figure>\n",
        chart(lines));
}

std::string categoryChart(const BrowserSizes& row) {
    std::vector<std::string> lines;
    for (const auto* const part :
         largestFirst(row.categories, [](const CategorySize& each) { return each.size; })) {
        lines.push_back(chartLine(displayName(part->category), part->size, bytesOf(row.size)));
    }
    return "<h4>By category</h4>\n" + chart(lines);
}

std::string profileChart(const BrowserSizes& row) {
    if (row.profiles.size() < 2) {
        return {};
    }
    const auto sizeOf = [](const ProfileSizes& part) { return sumOf(part.categories); };
    std::vector<std::string> lines;
    for (const auto* const part : largestFirst(row.profiles, sizeOf)) {
        lines.push_back(chartLine(displayName(part->profile), sizeOf(*part), bytesOf(row.size)));
    }
    return "<h4>By profile</h4>\n" + chart(lines);
}

std::string cards(const SizesReport& report) {
    std::string html;
    for (const auto* const row : browsersOf(report)) {
        if (hasFigures(*row)) {
            html += fmt::format(
                "<section class=\"card\">\n<h3>{} <span>{}</span></h3>\n{}{}</section>\n",
                isolated(displayName(row->browser)), bytesText(row->size->byteCount),
                categoryChart(*row), profileChart(*row));
        }
    }
    if (html.empty()) {
        return {};
    }
    return fmt::format(
        "<h2>By category and profile</h2>\n<p class=\"quiet\">The full width of a bar is all that "
        "the browser keeps.</p>\n<div class=\"cards\">\n{}</div>\n",
        html);
}

/** A row of the table of all figures. */
struct FigureRow {
    std::string text;
    std::optional<CleanableDataSize> size;
};

FigureRow figureRow(Browser browser, std::string_view profile, std::string_view category,
                    const std::optional<CleanableDataSize>& size,
                    const std::optional<std::string>& error) {
    const auto figures = size ? figureCells(*size)
                              : fmt::format(R"(<td class="failed" colspan="2">failed: {}</td>)",
                                            escaped(error.value_or("")));
    return {fmt::format("<tr><th scope=\"row\">{}</th><td>{}</td><td>{}</td>{}</tr>\n",
                        isolated(displayName(browser)), isolated(profile), category, figures),
            size};
}

std::vector<FigureRow> figureRows(const SizesReport& report) {
    std::vector<FigureRow> rows;
    for (const auto& row : report.browsers) {
        if (row.error) {
            rows.push_back(figureRow(row.browser, "", "", std::nullopt, row.error));
        }
        for (const auto& profile : row.profiles) {
            for (const auto& part : profile.categories) {
                rows.push_back(figureRow(row.browser, displayName(profile.profile),
                                         displayName(part.category), part.size, part.error));
            }
        }
    }
    return rows;
}

std::string table(const SizesReport& report, const std::vector<FigureRow>& rows) {
    std::string body;
    for (const auto* const row :
         largestFirst(rows, [](const FigureRow& each) { return each.size; })) {
        body += row->text;
    }
    return fmt::format(
        "<h2 id=\"figures\">All figures</h2>\n"
        "<div class=\"scroll\" role=\"region\" aria-labelledby=\"figures\" tabindex=\"0\">\n"
        "<table class=\"sortable\">\n"
        "<caption>Items and bytes of every browser, profile and category</caption>\n"
        "<thead>\n<tr><th scope=\"col\">Browser</th><th scope=\"col\">Profile</th>"
        "<th scope=\"col\">Category</th><th scope=\"col\" class=\"figure\">Items</th>"
        "<th scope=\"col\" class=\"figure\" aria-sort=\"descending\">Size</th></tr>\n</thead>\n"
        "<tbody>\n{}</tbody>\n"
        "<tfoot>\n<tr><th scope=\"row\" colspan=\"3\">Total</th>{}</tr>\n</tfoot>\n</table>\n"
        "</div>\n{}",
        body, figureCells(report.total), rows.empty() ? "" : elementOf(sortScript));
}

/** The browsers that keep nothing that was asked for. */
std::string emptyBrowsers(const SizesReport& report) {
    const auto names = namesOfEmptyBrowsers(report);
    return names.empty() ? std::string()
                         : fmt::format("<p class=\"quiet\">No data found: {}.</p>\n",
                                       escaped(fmt::format("{}", fmt::join(names, ", "))));
}

std::string summary(const SizesReport& report, const PageFacts& facts) {
    const auto& total = report.total;
    const bool isApproximate = total.itemCount.isApproximate || total.byteCount.isApproximate;
    return fmt::format(
        "<h1>What web browsers keep</h1>\n"
        "<p class=\"quiet\">Measured by browsersweep, <time datetime=\"{0}Z\">{0} UTC</time></p>\n"
        "<p class=\"total\">{1}</p>\n<p>in {2} items</p>\n{3}{4}",
        facts.date, bytesText(total.byteCount), countText(total.itemCount),
        limitsParagraph(facts.limits),
        isApproximate ? "<p class=\"quiet\">~ means about: a database counts with its whole file."
                        "</p>\n"
                      : "");
}

}  // namespace

std::string htmlText(const SizesReport& report, const PageFacts& facts) {
    const auto rows = figureRows(report);
    std::vector<PageScript> scripts;
    if (!rows.empty()) {
        scripts.push_back(sortScript);
    }
    return fmt::format("{}<main>\n{}<h2>By browser</h2>\n{}{}{}{}</main>\n{}",
                       pageStart("What web browsers keep", scripts), summary(report, facts),
                       overview(report), emptyBrowsers(report), cards(report), table(report, rows),
                       pageEnd());
}

std::string pageText(const Report& report, const PageFacts& facts) {
    const auto* const sites = std::get_if<SiteListReport>(&report);
    return sites != nullptr ? sitesPage(*sites, facts)
                            : htmlText(std::get<SizesReport>(report), facts);
}

}  // namespace browsersweep::cli
