#include "browsersweep/platform/internal/posix/UserDirectories.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <pwd.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {

std::optional<std::filesystem::path> homeInEnvironment(const char* variable) {
    const char* const home = std::getenv(variable);
    return home != nullptr && *home != '\0' ? std::optional<std::filesystem::path>(home)
                                            : std::nullopt;
}

std::optional<std::filesystem::path> homeInUserDatabase(int& error) {
    constexpr std::size_t generousSize = std::size_t{64} * 1024;
    std::string buffer(generousSize, '\0');
    struct passwd record = {};
    struct passwd* found = nullptr;
    error = ::getpwuid_r(::getuid(), &record, buffer.data(), buffer.size(), &found);
    if (found == nullptr || found->pw_dir == nullptr || *found->pw_dir == '\0') {
        error = error == 0 ? ENOENT : error;
        return std::nullopt;
    }
    return found->pw_dir;
}

void throwNoHome(int error) {
    throwSystemError("the user has no home folder", {}, error);
}

}  // namespace browsersweep::posix
