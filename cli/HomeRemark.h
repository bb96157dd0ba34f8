#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "browsersweep/platform/FileManager.h"

namespace browsersweep::cli {

/**
 * What is to be said of the home folder before anything is read of it: that the one which was asked
 * for is none, or that it is not laid out as on macOS. Empty where there is nothing to say.
 */
std::string remarkOnHome(const FileManager& files,
                         const std::optional<std::filesystem::path>& askedFor);

}  // namespace browsersweep::cli
