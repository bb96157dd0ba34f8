#pragma once

#include <filesystem>
#include <string>

#include "tests/support/Database.h"

namespace browsersweep::tests {

/**
 * A database as Firefox makes it, without rows: "places.sqlite" and so on, in a profile's folder.
 */
Database makeFirefoxDatabase(const std::filesystem::path& folder, const std::string& file);

}  // namespace browsersweep::tests
