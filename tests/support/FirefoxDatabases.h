#pragma once

#include <filesystem>

#include "tests/support/Database.h"

namespace browsersweep::tests {

/** Firefox's databases as it creates them, tables and indices, without rows. */
Database makePlacesDatabase(const std::filesystem::path& path);
Database makeCookiesDatabase(const std::filesystem::path& path);
Database makeFormHistoryDatabase(const std::filesystem::path& path);
Database makeWebAppsStoreDatabase(const std::filesystem::path& path);
Database makePermissionsDatabase(const std::filesystem::path& path);

}  // namespace browsersweep::tests
