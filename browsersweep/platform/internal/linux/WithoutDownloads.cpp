#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {

// Linux has no such folders.
WithoutDownloads::WithoutDownloads() noexcept = default;
WithoutDownloads::~WithoutDownloads() = default;

}  // namespace browsersweep::posix
