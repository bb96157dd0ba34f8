#include "browsersweep/base/Date.h"

namespace browsersweep {

ReferenceClock::time_point ReferenceClock::now() noexcept {
    const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
    return dateFrom1970Seconds(std::chrono::duration<double>(since1970).count());
}

}  // namespace browsersweep
