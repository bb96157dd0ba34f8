#include <string>

#include <gtest/gtest.h>

#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

TEST(CleanableDataCategory, rawValuesInTheOrderOfDeclaration) {
    const std::array<std::string_view, 6> expected{"cache",        "history",  "httpCookies",
                                                   "flashCookies", "formData", "localStorage"};
    ASSERT_EQ(allCleanableDataCategories.size(), expected.size());
    for (std::size_t ordinal = 0; ordinal < expected.size(); ++ordinal) {
        EXPECT_EQ(static_cast<std::size_t>(allCleanableDataCategories[ordinal]), ordinal);
        EXPECT_EQ(rawValue(allCleanableDataCategories[ordinal]), expected[ordinal]);
    }
}

TEST(CleanableDataCategory, everyCaseHasANameForPeople) {
    const std::array<std::string_view, 6> expected{"Cache",         "History",   "Cookies",
                                                   "Flash cookies", "Form data", "Local storage"};
    for (std::size_t ordinal = 0; ordinal < expected.size(); ++ordinal) {
        EXPECT_EQ(displayName(allCleanableDataCategories[ordinal]), expected[ordinal]);
    }
}

TEST(CleanableDataCategory, everyRawValueEncodedAndDecodedGivesTheSameCase) {
    for (const auto category : allCleanableDataCategories) {
        EXPECT_EQ(decodeCleanableDataCategory(rawValue(category)), category);
        EXPECT_EQ(cleanableDataCategoryFromRawValue(rawValue(category)), category);
    }
}

TEST(CleanableDataCategory, namesForPeopleInTheSameOrder) {
    const std::array<std::string_view, 6> expected{"Cache",         "History",   "Cookies",
                                                   "Flash cookies", "Form data", "Local storage"};
    for (std::size_t ordinal = 0; ordinal < expected.size(); ++ordinal) {
        EXPECT_EQ(displayName(allCleanableDataCategories[ordinal]), expected[ordinal]);
    }
}

TEST(CleanableDataCategory, unknownRawValueIsAbsent) {
    EXPECT_EQ(cleanableDataCategoryFromRawValue("cookies"), std::nullopt);
    EXPECT_EQ(cleanableDataCategoryFromRawValue("Cache"), std::nullopt);
    EXPECT_EQ(cleanableDataCategoryFromRawValue(""), std::nullopt);
}

TEST(CleanableDataCategory, decodingAnUnknownTextIsADecodingError) {
    try {
        decodeCleanableDataCategory("cookies");
        FAIL() << "no error";
    } catch (const DecodingError& error) {
        EXPECT_EQ(error.kind(), DecodingError::Kind::dataCorrupted);
        EXPECT_EQ(std::string(error.what()),
                  "Cannot initialize CleanableDataCategory from invalid String value cookies");
    }
}

}  // namespace
}  // namespace browsersweep
