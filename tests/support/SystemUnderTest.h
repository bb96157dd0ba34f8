#pragma once

#include <string_view>

namespace browsersweep::tests {

/** Whether the files for macOS are what is tested: on a Mac, or elsewhere over the emulation. */
bool isDarwin() noexcept;

/** Whether the emulation was told this word, such as "birth=no", of the file system. */
bool isEmulated(std::string_view word) noexcept;

/** Whether sizes are as old as the listing, which tells them or makes it necessary to ask. */
bool sizesAreThoseOfTheListing() noexcept;

}  // namespace browsersweep::tests
