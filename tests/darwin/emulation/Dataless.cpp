#include "tests/darwin/emulation/Dataless.h"

#include <atomic>
#include <cerrno>

#include <sys/resource.h>

namespace browsersweep::emulation {
namespace {

thread_local int policyOfThread = IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT;
std::atomic<int> downloads = 0;

bool isKnown(int type, int scope) noexcept {
    return type == IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES && scope == IOPOL_SCOPE_THREAD;
}

}  // namespace

bool mayDownload(const std::string& /*folder*/) {
    const bool may = policyOfThread != IOPOL_MATERIALIZE_DATALESS_FILES_OFF;
    downloads += may ? 1 : 0;
    return may;
}

}  // namespace browsersweep::emulation

using namespace browsersweep::emulation;

int browsersweepEmulatedDownloads() {
    return downloads;
}

int getiopolicy_np(int type, int scope) {
    if (!isKnown(type, scope)) {
        errno = EINVAL;
        return -1;
    }
    return policyOfThread;
}

int setiopolicy_np(int type, int scope, int policy) {
    if (!isKnown(type, scope)) {
        errno = EINVAL;
        return -1;
    }
    policyOfThread = policy;
    return 0;
}
