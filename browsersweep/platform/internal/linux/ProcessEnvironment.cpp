#include "browsersweep/platform/internal/posix/ProcessEnvironment.h"

#include <unistd.h>

namespace browsersweep::posix {

char** processEnvironment() noexcept {
    return ::environ;
}

}  // namespace browsersweep::posix
