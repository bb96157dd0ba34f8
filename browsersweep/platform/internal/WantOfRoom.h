#pragma once

#include <system_error>

namespace browsersweep {

/** Whether an error says that a disk has no room, or none for this user. */
bool isWantOfRoom(const std::error_code& error) noexcept;

}  // namespace browsersweep
