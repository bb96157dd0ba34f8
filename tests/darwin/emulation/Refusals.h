#pragma once

#include <string>

#include <fcntl.h>

namespace browsersweep::emulation {

/** What a call wants to do with a path. */
enum class Wish { look, read, write, change };

/**
 * The error that macOS answers with where Linux would not: 0, or EPERM for a protected folder and
 * for a locked file, ENOENT (with `hide=no` EPERM, and only for opening) for what lies in a
 * protected folder, EDEADLK for opening a folder whose contents lie in the cloud.
 */
int refusal(int directory, const std::string& path, Wish wish, int statFlags = 0);

}  // namespace browsersweep::emulation
