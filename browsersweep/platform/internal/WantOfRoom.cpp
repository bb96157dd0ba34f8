#include "browsersweep/platform/internal/WantOfRoom.h"

#include <cerrno>

namespace browsersweep {

bool isWantOfRoom(const std::error_code& error) noexcept {
    const bool isOfSystem =
        error.category() == std::system_category() || error.category() == std::generic_category();
    return isOfSystem && (error.value() == ENOSPC || error.value() == EDQUOT);
}

}  // namespace browsersweep
