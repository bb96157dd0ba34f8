#pragma once

#include <filesystem>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * What an open folder holds. The path is for errors; the control, which may be null, is asked
 * between entries. Throws `filesystem_error` and what the control throws.
 */
std::vector<FolderEntry> entriesOf(const FileDescriptor& folder, const std::filesystem::path& path,
                                   OperationControl* control);

}  // namespace browsersweep::posix
