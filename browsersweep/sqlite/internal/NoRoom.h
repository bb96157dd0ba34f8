#pragma once

#include <exception>

namespace browsersweep {

/** Whether an error says that a disk has no room, or may say so: SQLite does not always tell. */
bool saysNoRoom(const std::exception& error) noexcept;

}  // namespace browsersweep
