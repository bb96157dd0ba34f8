#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace browsersweep::emulation {

/**
 * What the emulated Mac is like, from the environment at each question, so that a test can change
 * it. `DARWIN_EMULATION` holds words between commas; `README.md` lists them.
 */
bool isOn(std::string_view word);

/** The text after `name=` among those words, or another one where it is not there. */
std::string valueOf(std::string_view name, std::string_view otherwise);

/** The folders in `DARWIN_PROTECTED`, between colons: absolute, without "." and "..". */
std::vector<std::string> protectedFolders();

/** The folders in `DARWIN_DATALESS`, likewise: their contents are not on this disk. */
std::vector<std::string> datalessFolders();

}  // namespace browsersweep::emulation
