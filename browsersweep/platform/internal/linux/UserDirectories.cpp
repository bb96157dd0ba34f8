#include "browsersweep/platform/internal/posix/UserDirectories.h"

#include <cstdlib>

namespace browsersweep::posix {

std::filesystem::path currentHomeDirectory() {
    int error = 0;
    if (const auto home = homeInEnvironment("HOME")) {
        return *home;
    }
    if (const auto home = homeInUserDatabase(error)) {
        return *home;
    }
    throwNoHome(error);
}

std::filesystem::path systemTemporaryDirectory() {
    const char* const named = std::getenv("TMPDIR");
    return named != nullptr && *named != '\0' ? named : "/tmp";
}

/** Linux has no such directories: the macOS layout below the home folder serves. */
std::vector<std::filesystem::path> systemDirectories(SearchPathDirectory /*directory*/) {
    return {};
}

}  // namespace browsersweep::posix
