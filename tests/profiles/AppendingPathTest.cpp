#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/profiles/internal/AppendingPath.h"

namespace browsersweep {
namespace {

TEST(AppendingPath, neverLeavesOutTheFolder) {
    struct Row {
        std::filesystem::path folder;
        std::filesystem::path path;
        std::filesystem::path expected;
    };
    const std::vector<Row> rows{
        {"/base", "a/b", "/base/a/b"},  {"/base/", "a/b", "/base/a/b"},
        {"/base", "/a/b", "/base/a/b"}, {"/base", "//a/b", "/base/a/b"},
        {"/base", "a b", "/base/a b"},  {"Firefox", "/a", "Firefox/a"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(appendingPath(row.folder, row.path), row.expected);
    }
}

}  // namespace
}  // namespace browsersweep
