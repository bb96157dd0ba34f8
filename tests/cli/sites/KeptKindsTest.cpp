#include <set>

#include <gtest/gtest.h>

#include "cli/sites/KeptKinds.h"

namespace browsersweep::cli {
namespace {

using Category = CleanableDataCategory;
using Kinds = std::set<TraceKind>;

TEST(KeptKinds, areThoseOfTheCategories) {
    EXPECT_EQ(kindsOfCategories({}), Kinds());
    EXPECT_EQ(kindsOfCategories({Category::flashCookies}), Kinds());
    EXPECT_EQ(kindsOfCategories({Category::httpCookies, Category::cache}),
              (Kinds{TraceKind::cookies, TraceKind::cachedFiles}));
    EXPECT_EQ(kindsOfCategories({Category::history}),
              (Kinds{TraceKind::history, TraceKind::downloads, TraceKind::icons,
                     TraceKind::openTabs, TraceKind::predictions}));
    EXPECT_EQ(kindsOfCategories({Category::localStorage, Category::formData}),
              (Kinds{TraceKind::siteStorage, TraceKind::serviceWorkers, TraceKind::formData}));
}

}  // namespace
}  // namespace browsersweep::cli
