#pragma once

#include <string>

namespace browsersweep::posix {

/** A name for the file that is to replace one of this name, which nobody else has. */
std::string newFileName(const std::string& replaced);

/** A name for the folder that is to replace one of this name, which nobody else has. */
std::string newFolderName(const std::string& replaced);

}  // namespace browsersweep::posix
