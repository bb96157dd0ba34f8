#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace browsersweep {

/**
 * The names of the programs that the current user runs now. Linux cuts them after 15 bytes. What
 * cannot be looked at, such as a process that ends meanwhile, is left out.
 */
std::vector<std::string> namesOfRunningPrograms();

/** Whether a process with this number is alive, whichever user it belongs to. */
bool isAlive(long process) noexcept;

/**
 * Whether another process holds a lock on the file. Asking takes no lock, but it lets go of the
 * locks that this process itself holds on the file: that is how the system closes files.
 */
bool isLockedByAnother(const std::filesystem::path& file) noexcept;

/** The name of this machine; empty where the system gives none. */
std::string hostName();

}  // namespace browsersweep
