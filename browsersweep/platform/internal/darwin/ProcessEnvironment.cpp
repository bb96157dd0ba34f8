#include "browsersweep/platform/internal/posix/ProcessEnvironment.h"

#include <crt_externs.h>

namespace browsersweep::posix {

/** A library may not name the variable itself there. */
char** processEnvironment() noexcept {
    return *_NSGetEnviron();
}

}  // namespace browsersweep::posix
