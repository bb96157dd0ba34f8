#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/** A file or folder that belongs to a row. */
struct RowFile {
    std::filesystem::path path;
    std::string key;  ///< the row's; empty: it tells of all such files, and goes with any of them
    bool isFolder = false;
};

/** What rows of a database have beside it. */
struct RowFiles {
    std::string_view table;  ///< without a name there is nothing
    std::string_view key;    ///< an expression of SQL over a row: what its files are known by
    std::filesystem::path (*place)(const std::filesystem::path& database) = nullptr;
    /** All such files that are there, also those whose row is gone. Throws `filesystem_error`. */
    std::vector<RowFile> (*find)(const FileManager& fileManager,
                                 const std::filesystem::path& database) = nullptr;
};

/** The keys of rows. */
using RowKeys = std::set<std::string, std::less<>>;

/** How many files belong to a row, or lie in its folder, and what they hold. */
CleanableDataSize sizeOf(const RowFile& file, const FileManager& fileManager);

/** The files whose key is chosen, and then, if there are any, those that tell of all. */
std::vector<RowFile> chosenFiles(const std::vector<RowFile>& files,
                                 const std::function<bool(const std::string& key)>& isChosen);

/** Deletes them in their order. Throws `filesystem_error`. */
void removeRowFiles(const std::vector<RowFile>& files, const FileManager& fileManager);

}  // namespace browsersweep
