#include <gtest/gtest.h>

#include "browsersweep/sites/TraceKind.h"

namespace browsersweep {
namespace {

TEST(TraceKind, isFoundByItsRawValue) {
    for (const TraceKind kind : allTraceKinds) {
        EXPECT_EQ(traceKindFromRawValue(rawValue(kind)), kind);
        EXPECT_FALSE(displayName(kind).empty());
    }
    EXPECT_EQ(rawValue(TraceKind::serviceWorkers), "serviceWorkers");
    EXPECT_EQ(displayName(TraceKind::predictions), "Predictions");
}

TEST(TraceKind, isNotFoundByAnyOtherText) {
    EXPECT_EQ(traceKindFromRawValue("History"), std::nullopt);
    EXPECT_EQ(traceKindFromRawValue(""), std::nullopt);
}

}  // namespace
}  // namespace browsersweep
