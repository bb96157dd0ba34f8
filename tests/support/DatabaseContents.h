#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace browsersweep::tests {

/**
 * Every row of every table of a database, as "table: value|value", sorted. SQLite's own tables are
 * left out.
 */
std::vector<std::string> contentsOf(const std::filesystem::path& database);

/** The files of a database, itself and its companions, in whose bytes a text stands. */
std::vector<std::string> filesHolding(const std::filesystem::path& database,
                                      const std::string& text);

}  // namespace browsersweep::tests
