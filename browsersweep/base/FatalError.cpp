#include "browsersweep/base/FatalError.h"

#include <cstdio>
#include <cstdlib>

namespace browsersweep {

void fatalError(std::string_view message) noexcept {
    std::fprintf(stderr, "browsersweep: fatal error: %.*s\n", static_cast<int>(message.size()),
                 message.data());
    std::abort();
}

}  // namespace browsersweep
