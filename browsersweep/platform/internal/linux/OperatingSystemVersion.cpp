#include "browsersweep/platform/OperatingSystemVersion.h"

#include <limits>

namespace browsersweep {

OperatingSystemVersion OperatingSystemVersion::current() noexcept {
    constexpr int newest = std::numeric_limits<int>::max();
    return {newest, newest, newest};
}

}  // namespace browsersweep
