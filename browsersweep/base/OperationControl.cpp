#include "browsersweep/base/OperationControl.h"

namespace browsersweep {

const char* OperationCancelled::what() const noexcept {
    return "the operation was cancelled";
}

void OperationControl::restart(ShouldStop shouldStop) {
    *this = OperationControl(std::move(shouldStop));
}

void OperationControl::count(const OperationProgress& done) noexcept {
    progress_.files += done.files;
    progress_.bytes += done.bytes;
    progress_.rows += done.rows;
}

bool OperationControl::shouldStop() noexcept {
    if (isStopped_ || !shouldStop_) {
        return isStopped_;
    }
    // A host whose question fails has lost control of the operation: stopping is the safe answer.
    try {
        isStopped_ = shouldStop_(progress_);
    } catch (...) {
        isStopped_ = true;
    }
    return isStopped_;
}

void OperationControl::continueOrThrow() {
    if (shouldStop()) {
        throw OperationCancelled(progress_);
    }
}

void OperationControl::leaveOut(const LeftOutFolder& folder) {
    leftOut_.emplace(folder.folder, folder);
}

std::vector<LeftOutFolder> OperationControl::takeLeftOut() {
    std::vector<LeftOutFolder> taken;
    for (auto& [path, folder] : leftOut_) {
        taken.push_back(std::move(folder));
    }
    leftOut_.clear();
    return taken;
}

void continueOrThrow(OperationControl* control) {
    if (control != nullptr) {
        control->continueOrThrow();
    }
}

}  // namespace browsersweep
