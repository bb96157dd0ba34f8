#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep::posix {

/**
 * The current user's home folder. One implementation per system: on Linux what `HOME` says, else
 * the user database; on macOS the account's, as the services that belong to it see it, and `HOME`
 * only where nothing else tells one. Throws `filesystem_error`.
 */
std::filesystem::path currentHomeDirectory();

/** The value of an environment variable; absent if it is not set or empty. */
std::optional<std::filesystem::path> homeInEnvironment(const char* variable);

/** What the user database names; nothing where it has no answer, and why. */
std::optional<std::filesystem::path> homeInUserDatabase(int& error);

/** Throws the error of a user without a home folder. */
[[noreturn]] void throwNoHome(int error);

/** The folder for temporary files. One implementation per system. */
std::filesystem::path systemTemporaryDirectory();

/** The system's own answer for one of the user's directories. One implementation per system. */
std::vector<std::filesystem::path> systemDirectories(SearchPathDirectory directory);

}  // namespace browsersweep::posix
