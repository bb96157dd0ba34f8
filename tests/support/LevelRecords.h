#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace browsersweep::tests {

/** The live records of a database of LevelDB. */
using LevelRecords = std::map<std::string, std::string>;

/** Makes a database, and the folders above it, as a browser would: in several files. */
void writeLevelRecords(const std::filesystem::path& folder, const LevelRecords& records);

/** Deletes records in a database, which keeps them in its files all the same. */
void eraseLevelRecords(const std::filesystem::path& folder, const std::vector<std::string>& keys);

/** Reads a database on a copy. */
LevelRecords readLevelRecords(const std::filesystem::path& folder);

}  // namespace browsersweep::tests
