#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/HTMLReport.h"
#include "cli/HTMLScripts.h"

namespace browsersweep::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const PageFacts facts{"2024-02-29 12:30", {}};

CategorySize cacheOf(std::int64_t bytes) {
    return {CleanableDataCategory::cache, {}, CleanableDataSize{{1}, {bytes}}, true};
}

SizesReport twoProfiles() {
    SizesReport report;
    report.total = {{3}, {4000}};
    BrowserSizes opera{};
    opera.browser = Browser::opera;
    opera.size = report.total;
    opera.categories = {cacheOf(3000)};
    opera.profiles = {{{"Work", true}, {cacheOf(1000)}}, {{{}, false}, {cacheOf(3000)}}};
    BrowserSizes empty{};
    empty.browser = Browser::safari;
    empty.size = CleanableDataSize::zero;
    report.browsers = {opera, empty};
    return report;
}

std::string barOf(const std::string& name, const std::string& width) {
    return R"(<li><span class="name"><bdi>)" + name + R"(</bdi></span> <span class="value">)" +
           width;
}

TEST(HTMLReport, everyBrowserCategoryAndProfileHasABarAndItsValue) {
    const auto html = htmlText(twoProfiles(), facts);
    EXPECT_THAT(html, HasSubstr(barOf("Opera", "4.0 KB")));
    EXPECT_THAT(html, HasSubstr(barOf("Cache", "3.0 KB")));
    EXPECT_THAT(html, HasSubstr(barOf("Work", "1.0 KB")));
    EXPECT_THAT(html, HasSubstr(barOf("(no name)", "3.0 KB")));
    for (const std::string width : {"100.00%", "75.00%", "25.00%"}) {
        EXPECT_THAT(html, HasSubstr(R"(<rect class="bar" width=")" + width + R"(")"));
    }
    EXPECT_THAT(html, HasSubstr("No data found: Safari."));
}

TEST(HTMLReport, everyProfileAndCategoryIsARowOfTheTableTheLargestFirst) {
    const auto html = htmlText(twoProfiles(), facts);
    const std::string start = R"(<tr><th scope="row"><bdi>Opera</bdi></th><td><bdi>)";
    EXPECT_THAT(html, HasSubstr(start +
                                "(no name)</bdi></td><td>Cache</td>"
                                "<td class=\"figure\" data-value=\"1\">1</td>"
                                "<td class=\"figure\" data-value=\"3000\">3.0 KB</td></tr>\n" +
                                start +
                                "Work</bdi></td><td>Cache</td>"
                                "<td class=\"figure\" data-value=\"1\">1</td>"
                                "<td class=\"figure\" data-value=\"1000\">1.0 KB</td></tr>\n"));
}

TEST(HTMLReport, aBrowserWithOneProfileNeedsNoChartOfProfiles) {
    auto report = twoProfiles();
    EXPECT_THAT(htmlText(report, facts), HasSubstr("<h4>By profile</h4>"));
    report.browsers.front().profiles.pop_back();
    EXPECT_THAT(htmlText(report, facts), Not(HasSubstr("<h4>By profile</h4>")));
}

TEST(HTMLReport, namesAndErrorsAreEscaped) {
    auto report = twoProfiles();
    report.browsers.front().profiles.front().profile.name = "<b>\"'&\n\u202E\xFF";
    report.browsers.back().error = "<script>";
    const auto html = htmlText(report, facts);
    EXPECT_THAT(html, HasSubstr("<bdi>&lt;b&gt;&quot;&#39;&amp;���</bdi>"));
    EXPECT_THAT(html, HasSubstr("failed: &lt;script&gt;"));
    EXPECT_THAT(html, Not(HasSubstr("failed: <script>")));
    EXPECT_THAT(htmlText(report, {facts.date, {"what holds <b>"}}),
                HasSubstr("Limited to: <bdi>what holds &lt;b&gt;</bdi>."));
}

TEST(HTMLReport, browsersCategoriesAndProfilesAreShownTheLargestFirst) {
    auto report = twoProfiles();
    BrowserSizes large{};
    large.browser = Browser::vivaldi;
    large.size = CleanableDataSize{{2}, {9000}};
    large.categories = {cacheOf(1000), cacheOf(8000)};
    large.categories[1].category = CleanableDataCategory::history;
    report.browsers.push_back(large);
    const auto html = htmlText(report, facts);
    const auto place = [&html](const std::string& bar) { return html.find(bar); };
    EXPECT_LT(place(barOf("Vivaldi", "9.0 KB")), place(barOf("Opera", "4.0 KB")));
    EXPECT_LT(place(barOf("History", "8.0 KB")), place(barOf("Cache", "1.0 KB")));
    EXPECT_LT(place(barOf("Cache", "1.0 KB")), place(barOf("Cache", "3.0 KB")));
    EXPECT_LT(place(barOf("(no name)", "3.0 KB")), place(barOf("Work", "1.0 KB")));
    EXPECT_NE(place(barOf("Work", "1.0 KB")), std::string::npos);
}

TEST(HTMLReport, runsNothingButWhatSortsATableThatHasRows) {
    EXPECT_THAT(htmlText(twoProfiles(), facts),
                AllOf(HasSubstr("; script-src 'sha256-" + std::string(sortScript.digest) + "'; "),
                      HasSubstr(elementOf(sortScript))));
    EXPECT_THAT(htmlText({}, facts), Not(HasSubstr("script")));
}

TEST(HTMLReport, whatFailedIsSaidInTheChartAndInTheTable) {
    auto report = twoProfiles();
    auto& opera = report.browsers.front();
    opera.categories.front() = {CleanableDataCategory::cache, "broken", {}, true};
    opera.profiles.front().categories = opera.categories;
    const auto html = htmlText(report, facts);
    EXPECT_THAT(html, HasSubstr(R"(Cache</bdi></span> <span class="value failed">failed</span>)"));
    EXPECT_THAT(html, HasSubstr(R"(Work</bdi></span> <span class="value failed">failed</span>)"));
    EXPECT_THAT(html,
                HasSubstr(R"(<td>Cache</td><td class="failed" colspan="2">failed: broken</td>)"));
}

TEST(HTMLReport, anyShareIsSeenAndNoBarIsLongerThanTheWhole) {
    auto report = twoProfiles();
    auto& opera = report.browsers.front();
    opera.categories = {cacheOf(1), cacheOf(0), cacheOf(-5), cacheOf(9000)};
    opera.profiles.clear();
    const auto html = htmlText(report, facts);
    std::string widths;
    const std::string start = R"(<rect class="bar" width=")";
    for (auto at = html.find(start); at != std::string::npos; at = html.find(start, at + 1)) {
        const auto from = at + start.size();
        widths += html.substr(from, html.find('"', from) - from) + " ";
    }
    EXPECT_EQ(widths, "100.00% 100.00% 0.50% 0.00% 0.00% ");
}

TEST(HTMLReport, thePageSaysWhenItWasMadeAndWhatItsFiguresMean) {
    auto report = twoProfiles();
    EXPECT_THAT(htmlText(report, facts),
                HasSubstr(R"(<time datetime="2024-02-29 12:30Z">2024-02-29 12:30 UTC</time>)"));
    EXPECT_THAT(htmlText(report, facts), Not(HasSubstr("asked for")));
    EXPECT_THAT(htmlText(report, {facts.date, {"History", "what holds \u201Ca\u201D"}}),
                HasSubstr("<p class=\"quiet\">Limited to: <bdi>History; what holds "
                          "\u201Ca\u201D</bdi>.</p>"));
    EXPECT_THAT(htmlText(report, facts), Not(HasSubstr("~ means about")));
    report.total.byteCount.isApproximate = true;
    EXPECT_THAT(htmlText(report, facts), HasSubstr("~ means about"));
}

TEST(HTMLReport, nothingFoundIsSaid) {
    EXPECT_THAT(htmlText({}, facts), HasSubstr("<p>No data was found.</p>"));
}

}  // namespace
}  // namespace browsersweep::cli
