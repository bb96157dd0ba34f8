#include "browsersweep/platform/internal/posix/UserDirectories.h"

#include <cstdlib>

namespace browsersweep::posix {

std::filesystem::path systemTemporaryDirectory() {
    const char* const named = std::getenv("TMPDIR");
    return named != nullptr && *named != '\0' ? named : "/tmp";
}

/** Linux has no such directories: the macOS layout below the home folder serves. */
std::vector<std::filesystem::path> systemDirectories(SearchPathDirectory /*directory*/) {
    return {};
}

}  // namespace browsersweep::posix
