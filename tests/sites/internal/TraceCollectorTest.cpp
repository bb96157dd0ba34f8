#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"
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

TEST(TraceCollector, refusesWhatTooManySitesShare) {
    TraceCollector collector;
    EXPECT_THROW(collector.add(TraceKind::settings, manyHosts(100'000), one), DecodingError);
    collector.add(TraceKind::history, manyHosts(1000), one);
    collector.add(TraceKind::history, manyHosts(1000), one);  // the same, which takes no more room
    EXPECT_THROW(collector.add(TraceKind::history, manyHosts(999), one), DecodingError);
}

TEST(TraceCollector, ignoresWhatBelongsToNoSite) {
    TraceCollector collector;
    collector.add(TraceKind::history, Hosts{}, one);
    collector.add(TraceKind::history, Hosts{"no host"}, one);
    EXPECT_EQ(collector.takeTraces(), std::vector<Trace>{});
}

}  // namespace
}  // namespace browsersweep
