#include "cli/SiteHTML.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "cli/Figures.h"
#include "cli/HTMLPieces.h"
#include "cli/SiteText.h"

namespace browsersweep::cli {
namespace {

/** Shows the rows that hold every word of the field. */
constexpr PageScript searchScript{R"js(
const field = document.getElementById("search");
const rows = [...document.querySelectorAll("#sites tbody tr")];
const found = document.getElementById("found");
field.hidden = false;
field.addEventListener("input", () => {
  const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
  let count = 0;
  for (const row of rows) {
    const text = row.textContent.toLowerCase();
    row.hidden = !words.every((word) => text.includes(word));
    count += row.hidden ? 0 : 1;
  }
  found.textContent = field.value ? `${count} of ${rows.length} sites` : "";
});
)js",
                                  "FqQorV6jcUH39T8+FID3Clm0LydeDP/sp8u4WRqIJkw="};

std::string siteSummary(const SiteListReport& report, const PageFacts& facts) {
    return fmt::format(
        "<h1>What each site left</h1>\n"
        "<p class=\"quiet\">Listed by browsersweep, <time datetime=\"{0}Z\">{0} UTC</time></p>\n"
        "<p class=\"total\">{1}</p>\n<p>site{2} in all browsers</p>\n{3}{4}",
        facts.date, countText({static_cast<std::int64_t>(report.sites.size())}),
        report.sites.size() == 1 ? "" : "s", limitsParagraph(facts.limits),
        report.errors.empty()
            ? ""
            : "<p class=\"failed\">Something could not be looked at: see the end.</p>\n");
}

/** The kinds of what a site left, each once. */
std::string kindsOf(const SiteRow& row) {
    std::vector<std::string_view> kinds;
    for (const auto& trace : row.traces) {
        if (std::find(kinds.begin(), kinds.end(), trace.kind.display) == kinds.end()) {
            kinds.push_back(trace.kind.display);
        }
    }
    return fmt::format("{}", fmt::join(kinds, ", "));
}

std::string siteTableRow(const SiteRow& row) {
    return fmt::format("<tr><th scope=\"row\">{}</th><td>{}</td><td>{}</td>{}<td>{}</td></tr>\n",
                       isolated(row.site), escaped(browsersOf(row)), escaped(kindsOf(row)),
                       figureCells(row.size), row.lastUsed ? dayText(*row.lastUsed) : "");
}

std::string siteTable(const SiteListReport& report) {
    if (report.sites.empty()) {
        return "<p>No traces of sites were found.</p>\n";
    }
    std::string rows;
    for (const auto& row : report.sites) {
        rows += siteTableRow(row);
    }
    return fmt::format(
        "<h2 id=\"heading\">Sites</h2>\n"
        "<input class=\"search\" id=\"search\" type=\"search\" aria-label=\"Search the sites\" "
        "placeholder=\"Search: a site, a browser, a kind\" autocomplete=\"off\" hidden>\n"
        "<p class=\"quiet\" id=\"found\" role=\"status\"></p>\n"
        "<div class=\"scroll\" role=\"region\" aria-labelledby=\"heading\" tabindex=\"0\">\n"
        "<table class=\"sortable\" id=\"sites\">\n<caption>What each site left, and when it was "
        "last used</caption>\n"
        "<thead>\n<tr><th scope=\"col\">Site</th><th scope=\"col\">Browsers</th>"
        "<th scope=\"col\">Kinds</th><th scope=\"col\" class=\"figure\">Items</th>"
        "<th scope=\"col\" class=\"figure\">Size</th><th scope=\"col\">Last use</th></tr>\n"
        "</thead>\n<tbody>\n{}</tbody>\n</table>\n</div>\n{}{}",
        rows, elementOf(searchScript), elementOf(sortScript));
}

std::string mixedTable(const SiteListReport& report) {
    if (report.notBySite.empty()) {
        return {};
    }
    std::string rows;
    for (const auto& row : report.notBySite) {
        rows += fmt::format("<tr><th scope=\"row\">{}</th><td>{}</td><td>{}</td>{}</tr>\n",
                            escaped(row.kind.display), isolated(displayName(row.owner)),
                            isolated(row.meaning), figureCells(row.size));
    }
    return fmt::format(
        "<h2 id=\"mixed\">Of no single site</h2>\n"
        "<div class=\"scroll\" role=\"region\" aria-labelledby=\"mixed\" tabindex=\"0\">\n"
        "<table>\n<caption>What is not stored by site</caption>\n<thead>\n<tr>"
        "<th scope=\"col\">Kind</th><th scope=\"col\">Where</th><th scope=\"col\">What it is</th>"
        "<th scope=\"col\" class=\"figure\">Items</th><th scope=\"col\" class=\"figure\">Size</th>"
        "</tr>\n</thead>\n<tbody>\n{}</tbody>\n</table>\n</div>\n",
        rows);
}

std::string errorList(const SiteListReport& report) {
    if (report.errors.empty()) {
        return {};
    }
    std::string lines;
    for (const auto& row : report.errors) {
        lines += fmt::format("<li>{}: {} {}</li>\n", isolated(displayName(row.owner)),
                             isolated(row.error), isolated(row.what.value_or("")));
    }
    return fmt::format("<h2>Not looked at</h2>\n<ul>\n{}</ul>\n", lines);
}

}  // namespace

std::string sitesPage(const SiteListReport& report, const PageFacts& facts) {
    std::vector<PageScript> scripts;
    if (!report.sites.empty()) {
        scripts = {searchScript, sortScript};
    }
    return fmt::format("{}<main>\n{}{}{}{}</main>\n{}", pageStart("What each site left", scripts),
                       siteSummary(report, facts), siteTable(report), mixedTable(report),
                       errorList(report), pageEnd());
}

}  // namespace browsersweep::cli
