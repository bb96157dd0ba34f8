#pragma once

#include <filesystem>
#include <string>

#include "tests/support/Database.h"

namespace browsersweep::tests {

/**
 * A database as Safari or WebKit makes it, without rows: "History.db" and so on, at a path whose
 * folder is made as well.
 */
Database makeSafariDatabase(const std::filesystem::path& path);

}  // namespace browsersweep::tests
