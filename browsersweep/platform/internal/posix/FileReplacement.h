#pragma once

#include <filesystem>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/platform/internal/posix/Gate.h"

namespace browsersweep::posix {

/**
 * Puts other contents in the place of an existing regular file through a new file beside it that is
 * written, given the old one's owner, mode, access control list and extended attributes, synced,
 * and renamed over it. Whenever it is cut short, the path holds the old file or the new one. Throws
 * `filesystem_error`; the new file is then gone again.
 */
void replaceFile(const std::filesystem::path& path, BytesView contents, const Gate& gate);

}  // namespace browsersweep::posix
