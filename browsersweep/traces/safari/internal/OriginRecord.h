#pragma once

#include <filesystem>
#include <string_view>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/internal/FolderStore.h"

namespace browsersweep {

/** The name of the file by which WebKit knows whose a folder is. */
inline constexpr std::string_view originFile = "origin";

/**
 * Whose such a file says that a folder is: the hosts of the page and of the frame in it, one where
 * they are the same. A frame that is of no web site is the browser's own or an extension's. Nobody
 * knows where the file is damaged.
 */
FolderOwner ownerInOriginRecord(std::string_view bytes);

/** The same of the file in a folder; nobody knows where it is missing. Throws `filesystem_error`.
 */
FolderOwner ownerOfOriginFolder(const FileManager& fileManager,
                                const std::filesystem::path& folder);

}  // namespace browsersweep
