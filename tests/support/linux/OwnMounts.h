#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>

namespace browsersweep::tests {

/**
 * Runs a piece of a test in a process that sees mounts of its own, which nobody else sees and which
 * end with it. Returns 0 if nothing failed in it, and nothing at all where that needs rights that
 * this process has not.
 */
std::optional<int> runWithOwnMounts(const std::function<void()>& body);

/** Makes a folder stand in another place as well, under the same device number. */
void mountFolder(const std::filesystem::path& folder, const std::filesystem::path& place);

/** Makes a new, empty disk of this many bytes stand in a place. */
void mountDisk(const std::filesystem::path& place, std::size_t bytes);

}  // namespace browsersweep::tests
