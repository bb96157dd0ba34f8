#pragma once

#include <filesystem>

#include "browsersweep/base/Bytes.h"

namespace browsersweep::posix {

/**
 * Puts other contents in the place of an existing file through a new file beside it that is
 * written, synced, given the old one's mode and owner, and renamed over it. Whenever it is cut
 * short, the path holds the old file or the new one. Throws `filesystem_error`; the new file is
 * then gone again.
 */
void replaceFile(const std::filesystem::path& path, BytesView contents);

}  // namespace browsersweep::posix
