#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/DatabaseTraceStore.h"
#include "browsersweep/traces/TraceStores.h"
#include "browsersweep/traces/safari/internal/SafariPlaces.h"

namespace browsersweep {

/** A database of Safari or WebKit, and the rules for its tables. */
struct SafariDatabase {
    SafariPlace place;
    std::string_view file;  ///< below that place
    std::span<const TraceTable> tables;
    RowFiles files{};
    bool keepsBookmarked = false;  ///< what is bookmarked is protected
};

/** The databases of a profile, in the order of their stores. */
std::span<const SafariDatabase> safariDatabases() noexcept;

/** The databases that all profiles share. */
std::span<const SafariDatabase> sharedSafariDatabases() noexcept;

/** The stores of these that are in these places. Touches no file. */
TraceStores databaseStores(std::span<const SafariDatabase> rows, const SafariPlaces& places,
                           const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
