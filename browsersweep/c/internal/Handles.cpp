#include "browsersweep/c/internal/Handles.h"

#include <exception>
#include <filesystem>

#include "browsersweep/binarycoding/BinaryDecodingError.h"
#include "browsersweep/catalogue/BrowserCleaners.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep::c {

browsersweep_error* errorOfCurrentException() {
    const auto make = [](browsersweep_error_kind kind, const char* text) {
        return handedOver(browsersweep_error{kind, text});
    };
    try {
        throw;
    } catch (const std::invalid_argument& error) {
        return make(BROWSERSWEEP_ERROR_INVALID_ARGUMENT, error.what());
    } catch (const std::filesystem::filesystem_error& error) {
        return make(BROWSERSWEEP_ERROR_FILE, error.what());
    } catch (const SQLiteError& error) {
        return make(BROWSERSWEEP_ERROR_DATABASE, error.what());
    } catch (const DecodingError& error) {
        return make(BROWSERSWEEP_ERROR_FORMAT, error.what());
    } catch (const BinaryDecodingError& error) {
        return make(BROWSERSWEEP_ERROR_FORMAT, error.what());
    } catch (const OperationCancelled&) {
        return make(BROWSERSWEEP_ERROR_CANCELLED, "cancelled by the progress function");
    } catch (const std::exception& error) {
        return make(BROWSERSWEEP_ERROR_OTHER, error.what());
    } catch (...) {
        return make(BROWSERSWEEP_ERROR_OTHER, "an unknown exception");
    }
}

std::unique_ptr<const BrowserCleaner> cleanerOf(const browsersweep_home* home,
                                                browsersweep_browser browser,
                                                std::shared_ptr<OperationControl> control) {
    const auto& folder = required(home, "home").folder;
    if (browser >= allBrowsers.size()) {
        throw std::invalid_argument("there is no browser of this number");
    }
    return cleaner(allBrowsers[browser], folder ? Home::at(*folder, std::move(control))
                                                : Home::current(std::move(control)));
}

const std::shared_ptr<const BrowserProfile>& profileAt(const browsersweep_profiles* profiles,
                                                       std::size_t index) {
    const auto* const entry = entryAt(&required(profiles, "profiles").entries, index);
    if (entry == nullptr) {
        throw std::invalid_argument("there is no profile of this index");
    }
    return entry->profile;
}

}  // namespace browsersweep::c
