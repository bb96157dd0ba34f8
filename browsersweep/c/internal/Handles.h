#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/c/browsersweep.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/hosting/ItemSweep.h"

// What stands behind the opaque structures of the C interface. Their names are that interface's.
// NOLINTBEGIN(readability-identifier-naming)

struct browsersweep_error {
    browsersweep_error_kind kind;
    std::string text;
};

struct browsersweep_home {
    std::optional<std::filesystem::path> folder;  ///< absent: the current user's own
};

struct browsersweep_profiles {
    struct Entry {
        std::shared_ptr<const browsersweep::BrowserProfile> profile;
        std::optional<std::string> name;
    };

    std::vector<Entry> entries;
    std::shared_ptr<browsersweep::OperationControl> control;  ///< asked by what their data does
};

struct browsersweep_filters {
    std::vector<browsersweep::CleanableDataFilter> list;
};

struct browsersweep_data {
    std::vector<browsersweep::SweepItem> items;
    std::shared_ptr<browsersweep::OperationControl> control;  ///< asked by what the items do
};

struct browsersweep_plan {
    struct Entry {
        browsersweep::CleanableDataCategory category;
        std::optional<std::string> profile;
        std::optional<std::string> folder;
        std::string path;
        std::optional<std::string> table;
        browsersweep::CleanableDataSize::Measurement items;
        std::optional<browsersweep::CleanableDataSize::Measurement> bytes;
        bool isUnseen;
    };

    std::vector<Entry> entries;
};

struct browsersweep_bookmarks {
    std::vector<browsersweep::Bookmark> list;
};

struct browsersweep_notifications {
    struct Entry {
        std::string sourceURL;
        std::string store;
    };

    std::vector<Entry> entries;
};

// NOLINTEND(readability-identifier-naming)

namespace browsersweep::c {

/** Makes an error of the exception that is being handled. */
browsersweep_error* errorOfCurrentException();

/**
 * Runs one function of the interface. An exception becomes an error in the caller's place, if there
 * is one, and the result of failure: NULL or false.
 */
template <typename Work>
auto guarded(browsersweep_error** place, Work work) noexcept -> decltype(work()) {
    try {
        return work();
    } catch (...) {
        if (place != nullptr) {
            *place = errorOfCurrentException();
        }
        return {};
    }
}

/** What an argument leads to. Throws `std::invalid_argument` for NULL. */
template <typename Value>
Value& required(Value* argument, const char* name) {
    if (argument == nullptr) {
        throw std::invalid_argument(std::string(name) + " is NULL");
    }
    return *argument;
}

/** Gives a new handle to the caller, who frees it. */
template <typename Handle>
Handle* handedOver(Handle handle) {
    return std::make_unique<Handle>(std::move(handle)).release();
}

/** Takes a handle back and ends its life. */
template <typename Handle>
void takeBack(Handle* handle) noexcept {
    const std::unique_ptr<Handle> owner(handle);
}

/** The text as the caller sees it: NULL if there is none. */
inline const char* textOf(const std::optional<std::string>& text) noexcept {
    return text ? text->c_str() : nullptr;
}

/** The entry at an index, or null if the list is missing or too short. */
template <typename Entry>
const Entry* entryAt(const std::vector<Entry>* entries, std::size_t index) noexcept {
    return entries != nullptr && index < entries->size() ? &(*entries)[index] : nullptr;
}

/**
 * The cleaner of a browser in a home, whose operations ask the control where there is one. Throws
 * `std::invalid_argument`.
 */
std::unique_ptr<const BrowserCleaner> cleanerOf(
    const browsersweep_home* home, browsersweep_browser browser,
    std::shared_ptr<OperationControl> control = nullptr);

/** The filter of profiles that takes them all. */
inline bool everyProfile(const BrowserProfile& /*profile*/) {
    return true;
}

/** One profile of a list. Throws `std::invalid_argument`. */
const std::shared_ptr<const BrowserProfile>& profileAt(const browsersweep_profiles* profiles,
                                                       std::size_t index);

}  // namespace browsersweep::c
