#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cli/DocumentText.h"

namespace browsersweep::cli {
namespace {

TEST(DocumentText, isWhatTheWholeDocumentWouldBe) {
    const std::vector<int> none;
    const std::vector<int> rows{1, 2};
    const auto row = [](int number) {
        return JSON{{"number", number}, {"list", JSON::array({number, "a\nb\u202E"})}, {"no", {}}};
    };
    DocumentText text;
    text.add("first", 7);
    text.addList("rows", rows, row);
    text.addList("no\"ne", none, row);
    text.add("object", row(3));
    JSON document{{"first", 7}};
    document["rows"] = listOf(rows, row);
    document["no\"ne"] = JSON::array();
    document["object"] = row(3);
    EXPECT_EQ(std::move(text).finish(), documentText(document));
}

TEST(DocumentText, ofNothingIsAnEmptyObject) {
    EXPECT_EQ(DocumentText().finish(), documentText(JSON::object()));
}

}  // namespace
}  // namespace browsersweep::cli
