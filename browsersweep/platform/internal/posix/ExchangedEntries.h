#pragma once

#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/**
 * Exchanges two entries of a folder in one step: nobody ever sees only one of them. False where
 * that fails, also on a file system that cannot do it; `errno` says why. One implementation per
 * system.
 */
bool exchangeEntries(const FileDescriptor& folder, const char* one, const char* other) noexcept;

}  // namespace browsersweep::posix
