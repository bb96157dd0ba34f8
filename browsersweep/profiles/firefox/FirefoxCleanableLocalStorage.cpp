#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"

#include <utility>
#include <vector>

#include "browsersweep/platform/internal/Text.h"

namespace browsersweep {
namespace {

CleanableDataFilter reversed(CleanableDataFilter filter) {
    if (filter.patternsData) {
        std::set<std::string> patterns;
        for (const std::string& pattern : filter.patternsData->patterns) {
            patterns.insert(reversedCharacters(pattern));
        }
        filter.patternsData->patterns = std::move(patterns);
    }
    return filter;
}

std::vector<CleanableDataFilter> reversed(CleanableDataFilters filters) {
    std::vector<CleanableDataFilter> result;
    for (const CleanableDataFilter& filter : filters) {
        result.push_back(reversed(filter));
    }
    return result;
}

}  // namespace

FirefoxCleanableLocalStorage::FirefoxCleanableLocalStorage(
    std::shared_ptr<const CleanableData> cleanableSQLiteDatabase)
    : cleanableSQLiteDatabase_(std::move(cleanableSQLiteDatabase)) {}

bool FirefoxCleanableLocalStorage::requiresClosedBrowserToClean() const noexcept {
    return cleanableSQLiteDatabase_->requiresClosedBrowserToClean();
}

std::vector<CleanableDataPart> FirefoxCleanableLocalStorage::parts() const {
    auto parts = cleanableSQLiteDatabase_->parts();
    for (CleanableDataPart& part : parts) {
        part.data = std::make_shared<FirefoxCleanableLocalStorage>(std::move(part.data));
    }
    return parts;
}

CleanableDataSize FirefoxCleanableLocalStorage::size(CleanableDataFilters filters) const {
    return cleanableSQLiteDatabase_->size(reversed(filters));
}

void FirefoxCleanableLocalStorage::clean(CleanableDataFilters filters) const {
    cleanableSQLiteDatabase_->clean(reversed(filters));
}

DatabaseInspection FirefoxCleanableLocalStorage::inspect(CleanableDataFilters filters) const {
    const auto* const database =
        dynamic_cast<const InspectableDatabase*>(cleanableSQLiteDatabase_.get());
    return database == nullptr ? DatabaseInspection() : database->inspect(reversed(filters));
}

}  // namespace browsersweep
