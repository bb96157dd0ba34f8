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
struct FirefoxDatabase {
    std::string_view file;  ///< below the profile's folder
    std::span<const TraceTable> tables;
    bool keepsHeldPlaces = false;  ///< what bookmarks and keywords hold is protected
};

/** The databases of a profile, in the order of their stores. */
std::span<const FirefoxDatabase> firefoxDatabases() noexcept;

/** The stores of a Firefox profile that are databases. Touches no file. */
TraceStores firefoxDatabaseStores(const std::filesystem::path& profileFolder,
                                  const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
