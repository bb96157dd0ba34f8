#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/platform/internal/posix/Gate.h"

namespace browsersweep::posix {

/**
 * Puts copies of the files of one folder, in a new folder, in the place of another folder, and
 * deletes that. Whenever it is cut short, the path leads to the old folder or to the new one.
 * Returns whether all of the old one is gone. Throws `filesystem_error` and what the control
 * throws, which may be null; where the old folder is still in its place the new one is gone again.
 */
bool replaceFolder(const std::filesystem::path& path, const std::filesystem::path& contents,
                   const Gate& gate, const std::shared_ptr<OperationControl>& control);

/** The same with files from memory, by their names. A name that is no plain one is an error. */
bool replaceFolder(const std::filesystem::path& path, const std::map<std::string, Bytes>& files,
                   const Gate& gate, const std::shared_ptr<OperationControl>& control);

}  // namespace browsersweep::posix
