#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "cli/sites/FreedShares.h"

namespace browsersweep::cli {
namespace {

using Shares = std::vector<std::int64_t>;

const Site a = *Site::ofHost("a.com");
const Site b = *Site::ofHost("b.com");

TEST(FreedShares, areTogetherWhatWasFreed) {
    EXPECT_EQ(sharesOf(10, {1, 1, 1}), (Shares{3, 3, 4}));
    EXPECT_EQ(sharesOf(-10, {1, 4}), (Shares{-2, -8}));
    EXPECT_EQ(sharesOf(10, {0, 5}), (Shares{0, 10}));
    EXPECT_EQ(sharesOf(10, {0, 0}), (Shares{0, 0}));
    EXPECT_EQ(sharesOf(10, {}), Shares());
}

TEST(FreedShares, followTheBytesThatWent) {
    FreedShares shares;
    const SweepStore store{Browser::opera, nullptr, nullptr};
    const Trace ofA{a, TraceKind::history, {}, {9, 100}, {}};
    const Trace ofB{b, TraceKind::history, {}, {1, 300}, {}};
    shares.add(store, {{ofA, ofB}, {{TraceKind::openTabs, "Sessions", {1, 600}, ""}}}, 1000);
    shares.add(store, {{ofA}, {}}, 5);
    EXPECT_EQ(shares.of(a, Browser::opera, nullptr, TraceKind::history), 105);
    EXPECT_EQ(shares.of(b, Browser::opera, nullptr, TraceKind::history), 300);
    EXPECT_EQ(shares.of(b, Browser::opera, nullptr, TraceKind::cookies), 0);
    EXPECT_EQ(shares.ofMixed(), Shares{600});
}

TEST(FreedShares, followTheItemsWhereNoBytesAreKnown) {
    FreedShares shares;
    const SweepStore store{Browser::opera, nullptr, nullptr};
    const Trace ofA{a, TraceKind::history, {}, {3, 0}, {}};
    const Trace ofB{b, TraceKind::history, {}, {1, 0}, {}};
    shares.add(store, {{ofA, ofB}, {}}, 400);
    EXPECT_EQ(shares.of(a, Browser::opera, nullptr, TraceKind::history), 300);
    EXPECT_EQ(shares.of(b, Browser::opera, nullptr, TraceKind::history), 100);
}

}  // namespace
}  // namespace browsersweep::cli
