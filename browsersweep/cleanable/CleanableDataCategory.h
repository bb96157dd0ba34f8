#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** The kinds of browsing data. */
enum class CleanableDataCategory {
    cache,         ///< cached files
    history,       ///< pages visited and files downloaded, with their icons and predictions
    httpCookies,   ///< cookies
    flashCookies,  ///< what Flash kept: local shared objects
    formData,      ///< what was typed into forms
    localStorage,  ///< what sites keep through the browser's storage for scripts
};

/** Every category, in the order of declaration. */
inline constexpr std::array allCleanableDataCategories{
    CleanableDataCategory::cache,       CleanableDataCategory::history,
    CleanableDataCategory::httpCookies, CleanableDataCategory::flashCookies,
    CleanableDataCategory::formData,    CleanableDataCategory::localStorage,
};

/** The name of the case as text, such as "httpCookies". */
BROWSERSWEEP_EXPORT std::string_view rawValue(CleanableDataCategory category) noexcept;

/** The name for people, such as "Cookies". */
BROWSERSWEEP_EXPORT std::string_view displayName(CleanableDataCategory category) noexcept;

/** The category whose raw value is exactly this text; absent for any other. */
BROWSERSWEEP_EXPORT std::optional<CleanableDataCategory> cleanableDataCategoryFromRawValue(
    std::string_view text) noexcept;

/** The same for text that must name a category: throws a `DecodingError` (dataCorrupted). */
BROWSERSWEEP_EXPORT CleanableDataCategory decodeCleanableDataCategory(std::string_view text);

}  // namespace browsersweep
