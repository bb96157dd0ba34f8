#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

const Site example = *Site::ofHost("example.com");
const Site other = *Site::ofHost("other.org");
constexpr CleanableDataSize one{1, 10};

TEST(TraceCollector, addsUpBySiteAndKindAndKeepsTheLatestDate) {
    TraceCollector collector;
    collector.add(TraceKind::history, Hosts{"www.example.com"}, one, dateFromReferenceSeconds(5));
    collector.add(TraceKind::history, Hosts{"example.com"}, one, dateFromReferenceSeconds(3));
    collector.add(TraceKind::cookies, Hosts{"example.com"}, one);
    const std::vector<Trace> expected{
        {example,
         TraceKind::history,
         {"example.com", "www.example.com"},
         {2, 20},
         dateFromReferenceSeconds(5)},
        {example, TraceKind::cookies, {"example.com"}, {1, 10}, {}},
    };
    EXPECT_EQ(collector.takeTraces(), expected);
}

TEST(TraceCollector, countsWhatBelongsToTwoSitesForBothAndTwoHostsOfOneSiteOnce) {
    TraceCollector collector;
    collector.add(TraceKind::siteStorage, Hosts{"a.example.com", "other.org"}, one);
    collector.add(TraceKind::siteStorage, Hosts{"a.example.com", "b.example.com"}, one);
    const std::vector<Trace> expected{
        {example,
         TraceKind::siteStorage,
         {"a.example.com", "b.example.com"},
         {2, 20},
         {},
         {{{other}, one}}},
        {other, TraceKind::siteStorage, {"other.org"}, {1, 10}, {}, {{{example}, one}}},
    };
    EXPECT_EQ(collector.takeTraces(), expected);
}

Hosts manyHosts(std::size_t count) {
    Hosts hosts;
    for (std::size_t number = 0; number < count; ++number) {
        hosts.push_back("host" + std::to_string(number) + ".test");
    }
    return hosts;
}

/** Of each trace whether it is noted with whom it is shared, which one that is not is not exact. */
std::vector<bool> isNoted(std::span<const Trace> traces) {
    std::vector<bool> noted;
    for (const Trace& trace : traces) {
        noted.push_back(!trace.shared.empty());
        EXPECT_EQ(trace.size.itemCount.isApproximate, trace.shared.empty());
        EXPECT_EQ(trace.size.byteCount.isApproximate, trace.shared.empty());
    }
    return noted;
}

TEST(TraceCollector, doesNotNoteWithWhomHundredsOfSitesShare) {
    TraceCollector collector;
    collector.add(TraceKind::settings, manyHosts(256), one);
    EXPECT_EQ(isNoted(collector.takeTraces()), std::vector<bool>(256, true));
    collector.add(TraceKind::settings, manyHosts(257), one);
    EXPECT_EQ(isNoted(collector.takeTraces()), std::vector<bool>(257, false));
}

TEST(TraceCollector, doesNotNoteAMillionNamesOfSitesThatShare) {
    TraceCollector collector;
    constexpr int most = 16;  // of 256 times 256
    for (int i = 0; i < most; ++i) {
        collector.add(TraceKind::history, manyHosts(256), one);
    }
    collector.add(TraceKind::settings, manyHosts(2), one);
    const auto traces = collector.takeTraces();
    ASSERT_EQ(traces.size(), 258U);
    const auto isOfSettings = [](const Trace& trace) { return trace.kind == TraceKind::settings; };
    for (const Trace& trace : traces) {
        EXPECT_EQ(trace.shared.empty(), isOfSettings(trace));
        EXPECT_EQ(trace.size.itemCount.isApproximate, isOfSettings(trace));
    }
}

TEST(TraceCollector, ignoresWhatBelongsToNoSite) {
    TraceCollector collector;
    collector.add(TraceKind::history, Hosts{}, one);
    collector.add(TraceKind::history, Hosts{"no host"}, one);
    EXPECT_EQ(collector.takeTraces(), std::vector<Trace>{});
}

}  // namespace
}  // namespace browsersweep
