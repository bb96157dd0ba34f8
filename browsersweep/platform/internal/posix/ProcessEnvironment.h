#pragma once

namespace browsersweep::posix {

/** The process's environment, as a program that it starts takes it. One implementation per system.
 */
char** processEnvironment() noexcept;

}  // namespace browsersweep::posix
