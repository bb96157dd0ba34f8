#pragma once

#include <filesystem>
#include <string>

#include "tests/support/Database.h"

namespace browsersweep::tests {

/**
 * A database as Chromium makes it, without rows: "History", "WebStorage/QuotaManager" and so on,
 * at its place below a profile's folder; "segmentation_platform/ukm_db" below the browser's.
 */
Database makeChromiumDatabase(const std::filesystem::path& folder, const std::string& file);

}  // namespace browsersweep::tests
