#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/SiteHTML.h"

namespace browsersweep::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr KindName history{"history", "History"};
constexpr KindName tabs{"openTabs", "Open tabs"};
const PageFacts facts{"2024-02-29 12:30", {}};

SiteListReport report() {
    const SiteOwner owner{Browser::chromium, "<b>Work</b>", "Profile 1"};
    SiteRow row{"a.com", {2, 1500}, dateFrom1970Seconds(1709209800), {}, 0};
    row.traces.push_back({owner, history, {"a.com"}, {2, 1500}, {}, 0});
    SiteListReport result;
    result.sites = {row};
    return result;
}

TEST(SiteHTML, hasARowForEachSite) {
    EXPECT_THAT(sitesPage(report(), facts),
                HasSubstr("<tr><th scope=\"row\"><bdi>a.com</bdi></th><td>Chromium</td>"
                          "<td>History</td><td class=\"figure\" data-value=\"2\">2</td>"
                          "<td class=\"figure\" data-value=\"1500\">1.5 KB</td>"
                          "<td>2024-02-29</td></tr>"));
}

TEST(SiteHTML, allowsItsOwnScriptsAloneAndOnlyWhereThereIsSomethingToSearch) {
    const auto page = sitesPage(report(), facts);
    EXPECT_THAT(page, HasSubstr("default-src 'none'; style-src 'sha256-"));
    EXPECT_THAT(page, HasSubstr("'; script-src 'sha256-"));
    EXPECT_THAT(page, HasSubstr("id=\"search\""));
    const auto empty = sitesPage({}, facts);
    EXPECT_THAT(empty, Not(HasSubstr("script")));
    EXPECT_THAT(empty, HasSubstr("No traces of sites were found."));
}

TEST(SiteHTML, tellsWhatBelongsToNoSiteAndWhatCouldNotBeLookedAtEscaped) {
    auto more = report();
    const auto& owner = more.sites[0].traces[0].owner;
    more.notBySite = {{owner, tabs, "/p/Sessions", {1, 5}, "tabs & windows", 0}};
    more.errors = {{owner, "/p/<History>", "damaged"}};
    const auto page = sitesPage(more, facts);
    EXPECT_THAT(page, HasSubstr("Chromium, &lt;b&gt;Work&lt;/b&gt;"));
    EXPECT_THAT(page, HasSubstr("tabs &amp; windows"));
    EXPECT_THAT(page, HasSubstr("/p/&lt;History&gt;"));
    EXPECT_THAT(page, Not(HasSubstr("<b>")));
    EXPECT_THAT(sitesPage(report(), facts), Not(HasSubstr("Not looked at")));
}

TEST(SiteHTML, saysWhereOnlyAPartWasAskedFor) {
    EXPECT_THAT(sitesPage(report(), facts), Not(HasSubstr("was asked for")));
    EXPECT_THAT(sitesPage(report(), {facts.date, {"cookies"}}),
                HasSubstr("Limited to: <bdi>cookies</bdi>."));
}

}  // namespace
}  // namespace browsersweep::cli
