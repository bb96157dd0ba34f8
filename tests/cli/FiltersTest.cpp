#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/Dates.h"
#include "cli/Filters.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

using Patterns = CleanableDataFilter::Patterns;
using DatesPart = CleanableDataFilter::Dates;

TEST(Filters, aPatternIsAFilterOfOnePattern) {
    EXPECT_EQ(patternFilter(CleanableDataFilter::Rule::include, "exämple.com"),
              CleanableDataFilter(Patterns{Patterns::Rule::include, {"exämple.com"}}, {}));
    EXPECT_EQ(patternFilter(CleanableDataFilter::Rule::exclude, "a b"),
              CleanableDataFilter(Patterns{Patterns::Rule::exclude, {"a b"}}, {}));
}

TEST(Filters, patternsThatSQLWouldReadOtherwiseAreRefused) {
    for (const std::string pattern : {"", "'", "a'b", "%", "_", "a\n", "\t", "\x7F", "\xC2\x85",
                                      "\xFF", "\xC0\xA7", "\xED\xA0\x80"}) {
        SCOPED_TRACE(pattern);
        EXPECT_THROW(patternFilter(CleanableDataFilter::Rule::include, pattern), UsageError);
    }
    EXPECT_THROW(patternFilter(CleanableDataFilter::Rule::include, std::string("a\0b", 3)),
                 UsageError);
}

TEST(Filters, jsonHoldsAnyFilter) {
    const auto start = parseDate("2024-01-01");
    const auto end = dateFromReferenceSeconds(800000000.5);
    struct Row {
        std::string text;
        CleanableDataFilter filter;
    };
    const std::vector<Row> rows = {
        {"{}", {}},
        {R"({"patterns":null,"dates":null})", {}},
        {R"({"patterns":{"rule":"include","patterns":["b","a","b"]}})",
         {Patterns{Patterns::Rule::include, {"a", "b"}}, {}}},
        {R"({"patterns":{"rule":"exclude","patterns":[]}})",
         {Patterns{Patterns::Rule::exclude, {}}, {}}},
        {R"({"dates":{"rule":"insideRange"}})",
         {{}, DatesPart{DatesPart::Rule::insideRange, {}, {}}}},
        {R"({"dates":{"rule":"outsideRange","startDate":"2024-01-01","endDate":800000000.5}})",
         {{}, DatesPart{DatesPart::Rule::outsideRange, start, end}}},
        {R"({"dates":{"endDate":"800000000.5","rule":"insideRange","startDate":null},
             "patterns":{"patterns":["ü"],"rule":"exclude"}})",
         {Patterns{Patterns::Rule::exclude, {"ü"}},
          DatesPart{DatesPart::Rule::insideRange, {}, end}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(filterFromJSON(row.text), row.filter);
    }
}

TEST(Filters, jsonOfAnyOtherFormIsRefused) {
    for (const std::string text : {"",
                                   "x",
                                   "[]",
                                   "null",
                                   "{",
                                   "{}x",
                                   R"({"a":1})",
                                   R"({"patterns":{}})",
                                   R"({"patterns":{"rule":"include"}})",
                                   R"({"patterns":{"patterns":[]}})",
                                   R"({"patterns":{"rule":"include","patterns":["a"],"x":null}})",
                                   R"({"patterns":{"rule":"include","patterns":["a%"]}})",
                                   R"({"patterns":{"rule":"include","patterns":[null]}})",
                                   R"({"dates":{"rule":"inside"}})",
                                   R"({"dates":{"rule":"insideRange","startDate":[]}})",
                                   R"({"dates":{"rule":"insideRange","startDate":"2024-02-30"}})",
                                   R"({"dates":{"rule":"insideRange","startDate":1e300}})",
                                   R"({"dates":{"rule":"insideRange","startDate":1709164800}})",
                                   R"({"dates":{"rule":"insideRange","endDate":"1709164800"}})",
                                   R"({"dates":{"rule":"insideRange","startDate":2,"endDate":1}})",
                                   R"({"dates":{"rule":"insideRange","rule":"outsideRange"}})"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(filterFromJSON(text), UsageError);
    }
}

TEST(Filters, jsonNestedWithoutEndIsRefusedAndDoesNotExhaustTheStack) {
    constexpr std::size_t longestArgument = 131072;
    EXPECT_THROW(filterFromJSON(std::string(longestArgument, '[')), UsageError);
}

}  // namespace
}  // namespace browsersweep::cli
