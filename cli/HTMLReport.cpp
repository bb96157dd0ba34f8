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

/** The sum of a profile's categories; absent where all of them failed. */
std::optional<CleanableDataSize> sumOf(const std::vector<CategorySize>& parts) {
    std::optional<CleanableDataSize> sum;
    for (const auto& part : parts) {
        if (part.size) {
            sum = sum.value_or(CleanableDataSize::zero) + *part.size;
        }
    }
    return sum;
}

bool hasFigures(const BrowserSizes& row) noexcept {
    return !row.error && !row.categories.empty();
}

std::string overview(const SizesReport& report) {
    std::vector<std::string> lines;
    for (const auto& row : report.browsers) {
        if (row.error || hasFigures(row)) {
            lines.push_back(
                chartLine(displayName(row.browser), row.size, report.total.byteCount.value));
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
    for (const auto& part : row.categories) {
        lines.push_back(chartLine(displayName(part.category), part.size, bytesOf(row.size)));
    }
    return "<h4>By category</h4>\n" + chart(lines);
}

std::string profileChart(const BrowserSizes& row) {
    if (row.profiles.size() < 2) {
        return {};
    }
    std::vector<std::string> lines;
    for (const auto& part : row.profiles) {
        lines.push_back(
            chartLine(displayName(part.profile), sumOf(part.categories), bytesOf(row.size)));
    }
    return "<h4>By profile</h4>\n" + chart(lines);
}

std::string cards(const SizesReport& report) {
    std::string html;
    for (const auto& row : report.browsers) {
        if (hasFigures(row)) {
            html += fmt::format(
                "<section class=\"card\">\n<h3>{} <span>{}</span></h3>\n{}{}</section>\n",
                isolated(displayName(row.browser)), bytesText(row.size->byteCount),
                categoryChart(row), profileChart(row));
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

std::string tableRow(Browser browser, const ProfileRow& profile, const CategorySize& part) {
    const auto figures = part.size
                             ? figureCells(*part.size)
                             : fmt::format(R"(<td class="failed" colspan="2">failed: {}</td>)",
                                           escaped(part.error.value_or("")));
    return fmt::format("<tr><th scope=\"row\">{}</th><td>{}</td><td>{}</td>{}</tr>\n",
                       isolated(displayName(browser)), isolated(displayName(profile)),
                       displayName(part.category), figures);
}

std::string tableRows(const BrowserSizes& row) {
    const auto name = isolated(displayName(row.browser));
    if (row.error) {
        return fmt::format(
            "<tr><th scope=\"row\">{}</th>"
            "<td class=\"failed\" colspan=\"4\">failed: {}</td></tr>\n",
            name, escaped(*row.error));
    }
    std::string html;
    for (const auto& profile : row.profiles) {
        for (const auto& part : profile.categories) {
            html += tableRow(row.browser, profile.profile, part);
        }
    }
    return html + fmt::format(
                      "<tr class=\"sum\"><th scope=\"row\">{}</th><td>all</td>"
                      "<td>all</td>{}</tr>\n",
                      name, figureCells(row.size.value_or(CleanableDataSize::zero)));
}

std::string table(const SizesReport& report) {
    std::string bodies;
    for (const auto& row : report.browsers) {
        if (row.error || hasFigures(row)) {
            bodies += fmt::format("<tbody>\n{}</tbody>\n", tableRows(row));
        }
    }
    return fmt::format(
        "<h2 id=\"figures\">All figures</h2>\n"
        "<div class=\"scroll\" role=\"region\" aria-labelledby=\"figures\" tabindex=\"0\">\n"
        "<table>\n<caption>Items and bytes of every browser, profile and category</caption>\n"
        "<thead>\n<tr><th scope=\"col\">Browser</th><th scope=\"col\">Profile</th>"
        "<th scope=\"col\">Category</th><th scope=\"col\" class=\"figure\">Items</th>"
        "<th scope=\"col\" class=\"figure\">Size</th></tr>\n</thead>\n{}"
        "<tfoot>\n<tr><th scope=\"row\" colspan=\"3\">Total</th>{}</tr>\n</tfoot>\n</table>\n"
        "</div>\n",
        bodies, figureCells(report.total));
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
        facts.isFiltered ? "<p class=\"quiet\">Only what the given filters choose counts.</p>\n"
                         : "",
        isApproximate ? "<p class=\"quiet\">~ means about: a database counts with its whole file."
                        "</p>\n"
                      : "");
}

}  // namespace

std::string htmlText(const SizesReport& report, const PageFacts& facts) {
    return fmt::format("{}<main>\n{}<h2>By browser</h2>\n{}{}{}{}</main>\n{}",
                       pageStart("What web browsers keep"), summary(report, facts),
                       overview(report), emptyBrowsers(report), cards(report), table(report),
                       pageEnd());
}

std::string pageText(const Report& report, const PageFacts& facts) {
    const auto* const sites = std::get_if<SiteListReport>(&report);
    return sites != nullptr ? sitesPage(*sites, facts)
                            : htmlText(std::get<SizesReport>(report), facts);
}

}  // namespace browsersweep::cli
