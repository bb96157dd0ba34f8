#include "browsersweep/c/internal/Handles.h"

#include <exception>
#include <filesystem>

#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep::c {
namespace {

template <typename Type>
bool is(const std::exception& error) noexcept {
    return dynamic_cast<const Type*>(&error) != nullptr;
}

browsersweep_error_kind kindOf(const std::exception& error) noexcept {
    if (is<std::invalid_argument>(error)) {
        return BROWSERSWEEP_ERROR_INVALID_ARGUMENT;
    }
    if (is<std::filesystem::filesystem_error>(error)) {
        return BROWSERSWEEP_ERROR_FILE;
    }
    if (is<SQLiteError>(error)) {
        return BROWSERSWEEP_ERROR_DATABASE;
    }
    if (is<DecodingError>(error) || is<BinaryDecodingError>(error)) {
        return BROWSERSWEEP_ERROR_FORMAT;
    }
    return is<Cancelled>(error) ? BROWSERSWEEP_ERROR_CANCELLED : BROWSERSWEEP_ERROR_OTHER;
}

}  // namespace

browsersweep_error* errorOfCurrentException() {
    try {
        throw;
    } catch (const std::exception& error) {
        return handedOver(browsersweep_error{kindOf(error), error.what()});
    } catch (...) {
        return handedOver(browsersweep_error{BROWSERSWEEP_ERROR_OTHER, "an unknown exception"});
    }
}

std::unique_ptr<const BrowserCleaner> cleanerOf(const browsersweep_home* home,
                                                browsersweep_browser browser) {
    const auto& place = required(home, "home").home;
    if (browser >= allBrowsers.size()) {
        throw std::invalid_argument("there is no browser of this number");
    }
    return cleaner(allBrowsers[browser], place);
}

const BrowserProfile& profileAt(const browsersweep_profiles* profiles, std::size_t index) {
    const auto* const entry = entryAt(&required(profiles, "profiles").entries, index);
    if (entry == nullptr) {
        throw std::invalid_argument("there is no profile of this index");
    }
    return *entry->profile;
}

}  // namespace browsersweep::c
