#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/DatabaseTraceStore.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** A database of a profile, and the rules for its tables. */
struct ChromiumDatabase {
    std::string_view file;  ///< below the profile's folder
    std::span<const TraceTable> tables;
    RowFiles files{};
    bool keepsBookmarked = false;  ///< what is bookmarked is protected
};

/** The databases of a profile, in the order of their stores. */
std::span<const ChromiumDatabase> chromiumDatabases() noexcept;

/** The databases that all profiles of a browser share, below the browser's own folder. */
std::span<const ChromiumDatabase> sharedChromiumDatabases() noexcept;

/** The stores of a profile that are databases. Touches no file. */
TraceStores databaseStores(const std::filesystem::path& profileFolder,
                           const std::shared_ptr<const FileManager>& fileManager);

/** The stores that all profiles share and that are databases. Touches no file. */
TraceStores sharedDatabaseStores(const std::filesystem::path& browserFolder,
                                 const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
