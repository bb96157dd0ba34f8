#include "browsersweep/cleanable/CleanableDataCategory.h"

#include <algorithm>
#include <string>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

constexpr std::array<std::string_view, allCleanableDataCategories.size()> rawValues{
    "cache", "history", "httpCookies", "flashCookies", "formData", "localStorage"};

}  // namespace

std::string_view rawValue(CleanableDataCategory category) noexcept {
    return rawValues[static_cast<std::size_t>(category)];
}

std::optional<CleanableDataCategory> cleanableDataCategoryFromRawValue(
    std::string_view text) noexcept {
    const auto* const found = std::find(rawValues.begin(), rawValues.end(), text);
    if (found == rawValues.end()) {
        return std::nullopt;
    }
    return allCleanableDataCategories[static_cast<std::size_t>(found - rawValues.begin())];
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
