#include <gtest/gtest.h>

#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {
namespace {

TEST(ForgetRequest, takesEveryKindButSettingsUnlessItNamesSome) {
    ForgetRequest request;
    EXPECT_TRUE(request.takes(TraceKind::cookies));
    EXPECT_FALSE(request.takes(TraceKind::settings));
    request.kinds = {TraceKind::history};
    EXPECT_TRUE(request.takes(TraceKind::history));
    EXPECT_FALSE(request.takes(TraceKind::cookies));
}

TEST(ForgetRequest, neverTakesKindsThatAreKept) {
    ForgetRequest request;
    request.sites = SiteSelection::everything();
    request.takesSettings = true;
    request.keptKinds = {TraceKind::cookies, TraceKind::openTabs, TraceKind::settings};
    EXPECT_TRUE(request.takes(TraceKind::history));
    EXPECT_FALSE(request.takes(TraceKind::cookies));
    EXPECT_FALSE(request.takes(TraceKind::settings));
    EXPECT_FALSE(request.takesMixedOf(TraceKind::openTabs));
    request.kinds = {TraceKind::cookies};
    EXPECT_FALSE(request.takes(TraceKind::cookies));
    EXPECT_FALSE(request.takes(TraceKind::history));
}

TEST(ForgetRequest, takesSettingsWhenItIsToldSo) {
    ForgetRequest request;
    request.takesSettings = true;
    EXPECT_TRUE(request.takes(TraceKind::settings));
    EXPECT_TRUE(request.takes(TraceKind::cookies));
    request.takesSettings = false;
    request.kinds = {TraceKind::settings};
    EXPECT_TRUE(request.takes(TraceKind::settings));
}

TEST(ForgetRequest, takesWhatTellsNoSiteApartOnlyWhenMostSitesGoOrItIsToldSo) {
    ForgetRequest request;
    EXPECT_FALSE(request.takesMixedOf(TraceKind::openTabs));
    request.takesMixed = true;
    EXPECT_TRUE(request.takesMixedOf(TraceKind::openTabs));
    request.kinds = {TraceKind::history};
    EXPECT_FALSE(request.takesMixedOf(TraceKind::openTabs));

    ForgetRequest rest;
    rest.sites = SiteSelection::allBut({});
    EXPECT_TRUE(rest.takesMixedOf(TraceKind::openTabs));
    rest.sites = SiteSelection::everything();
    EXPECT_TRUE(rest.takesMixedOf(TraceKind::openTabs));
}

}  // namespace
}  // namespace browsersweep
