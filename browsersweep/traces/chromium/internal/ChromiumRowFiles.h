#pragma once

#include <filesystem>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/RowFiles.h"

namespace browsersweep {

/** The folders beside "QuotaManager" whose names are the numbers of buckets. */
std::vector<RowFile> findBucketFolders(const FileManager& fileManager,
                                       const std::filesystem::path& database);

/** The entries of the folder "cache" beside the database of dictionaries, and their index. */
std::vector<RowFile> findDictionaryEntries(const FileManager& fileManager,
                                           const std::filesystem::path& database);

/** The folder of a database. */
std::filesystem::path folderOf(const std::filesystem::path& database);

/** The folder "cache" beside a database. */
std::filesystem::path cacheBeside(const std::filesystem::path& database);

/** A bucket's folder has its number as its name. */
inline constexpr RowFiles bucketFolders{"buckets", "CAST(id AS TEXT)", folderOf, findBucketFolders};

/** An entry's key is the dictionary's token in hexadecimal digits. */
inline constexpr RowFiles dictionaryEntries{"dictionaries",
                                            "printf('%016X%016X', token_high, token_low)",
                                            cacheBeside, findDictionaryEntries};

}  // namespace browsersweep
