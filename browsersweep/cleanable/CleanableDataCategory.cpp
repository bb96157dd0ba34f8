#include "browsersweep/cleanable/CleanableDataCategory.h"

#include <algorithm>
#include <string>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

struct CategoryRow {
    std::string_view rawValue;
    std::string_view displayName;
};

// clang-format off
constexpr std::array<CategoryRow, allCleanableDataCategories.size()> categoryTable{{
    {"cache",        "Cache"},
    {"history",      "History"},
    {"httpCookies",  "Cookies"},
    {"flashCookies", "Flash cookies"},
    {"formData",     "Form data"},
    {"localStorage", "Local storage"},
}};
// clang-format on

const CategoryRow& rowOf(CleanableDataCategory category) noexcept {
    return categoryTable[static_cast<std::size_t>(category)];
}

}  // namespace

std::string_view rawValue(CleanableDataCategory category) noexcept {
    return rowOf(category).rawValue;
}

std::string_view displayName(CleanableDataCategory category) noexcept {
    return rowOf(category).displayName;
}

std::optional<CleanableDataCategory> cleanableDataCategoryFromRawValue(
    std::string_view text) noexcept {
    const auto* const found =
        std::find_if(allCleanableDataCategories.begin(), allCleanableDataCategories.end(),
                     [text](CleanableDataCategory category) { return rawValue(category) == text; });
    return found == allCleanableDataCategories.end() ? std::nullopt : std::optional(*found);
}

CleanableDataCategory decodeCleanableDataCategory(std::string_view text) {
    const auto category = cleanableDataCategoryFromRawValue(text);
    if (!category) {
        throw DecodingError(DecodingError::Kind::dataCorrupted,
                            "Cannot initialize CleanableDataCategory from invalid String value " +
                                std::string(text));
    }
    return *category;
}

}  // namespace browsersweep
