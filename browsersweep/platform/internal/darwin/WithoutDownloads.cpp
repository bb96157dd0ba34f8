#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

#include <cerrno>

#include <sys/resource.h>

namespace browsersweep::posix {
namespace {

constexpr int policy = IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES;

}  // namespace

// The policy belongs to the host's thread, which gets back what it had.
WithoutDownloads::WithoutDownloads() noexcept
    : before_(::getiopolicy_np(policy, IOPOL_SCOPE_THREAD)) {
    if (before_ >= 0) {
        ::setiopolicy_np(policy, IOPOL_SCOPE_THREAD, IOPOL_MATERIALIZE_DATALESS_FILES_OFF);
    }
}

WithoutDownloads::~WithoutDownloads() {
    if (before_ >= 0) {
        const int error = errno;  // of the call that was made meanwhile
        ::setiopolicy_np(policy, IOPOL_SCOPE_THREAD, before_);
        errno = error;
    }
}

}  // namespace browsersweep::posix
