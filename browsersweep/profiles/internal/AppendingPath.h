#pragma once

#include <filesystem>

namespace browsersweep {

/**
 * A path below a folder. Unlike the operator "/" of paths, one that is absolute does not replace
 * the folder: its leading slashes are dropped.
 */
std::filesystem::path appendingPath(const std::filesystem::path& folder,
                                    const std::filesystem::path& path);

}  // namespace browsersweep
