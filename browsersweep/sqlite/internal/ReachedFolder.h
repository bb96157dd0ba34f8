#pragma once

#include <filesystem>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep {

/**
 * Whether the folder of a database is reached without a link and within one mount, as every folder
 * that is cleaned must be: rows behind a link are not the browser's. The file manager tells its
 * control of a folder that is left out so.
 */
inline bool isFolderReached(const FileManager& fileManager, const std::filesystem::path& database) {
    return fileManager.enumerator(database.parent_path()) != nullptr;
}

}  // namespace browsersweep
