#include "browsersweep/platform/internal/posix/FileDescriptor.h"

#include <unistd.h>

namespace browsersweep {

FileDescriptor::~FileDescriptor() {
    close();
}

void FileDescriptor::close() noexcept {
    if (number_ >= 0) {
        ::close(std::exchange(number_, none));
    }
}

}  // namespace browsersweep
