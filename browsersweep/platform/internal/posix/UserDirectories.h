#pragma once

#include <filesystem>
#include <vector>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep::posix {

/** The current user's home folder: `HOME`, or the user database's answer where it is not set. */
std::filesystem::path currentHomeDirectory();

/** The folder for files of the moment. One implementation per system. */
std::filesystem::path systemTemporaryDirectory();

/** The system's own answer for one of the user's directories. One implementation per system. */
std::vector<std::filesystem::path> systemDirectories(SearchPathDirectory directory);

}  // namespace browsersweep::posix
