#include <gtest/gtest.h>

#include "cli/Suggestion.h"

namespace browsersweep::cli {
namespace {

const std::vector<std::string_view> known{"chromium", "googleChrome", "microsoftEdge", "opera"};

TEST(Suggestion, namesTheWordThatWasProbablyMeant) {
    for (const auto& [word, meant] : {std::pair{"oprea", "opera"},
                                      {"OPERA", "opera"},
                                      {"chromum", "chromium"},
                                      {"googlechrom", "googleChrome"},
                                      {"edge", "microsoftEdge"},
                                      {"chrome", "googleChrome"}}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(closest(word, known), std::string_view(meant));
    }
}

TEST(Suggestion, aThirdOfTheLettersMayBeWrong) {
    EXPECT_EQ(closest("chromiumxy", known), std::string_view("chromium"));
    EXPECT_EQ(closest("chromiumxyz", known), std::nullopt);
    EXPECT_EQ(closest("microsoftEdgeabcd", known), std::string_view("microsoftEdge"));
    EXPECT_EQ(closest("microsoftEdgeabcde", known), std::nullopt);
}

TEST(Suggestion, listsAllWordsWhereNoneIsClose) {
    EXPECT_EQ(closest("", known), std::nullopt);
    EXPECT_EQ(closest("xy", known), std::nullopt);
    EXPECT_EQ(closest(std::string(100, 'o'), known), std::nullopt);
    EXPECT_EQ(suggestion("xy", known),
              "it must be one of chromium, googleChrome, microsoftEdge, opera");
    EXPECT_EQ(suggestion("oper", known), "did you mean opera?");
}

}  // namespace
}  // namespace browsersweep::cli
