#include "browsersweep/platform/internal/posix/UserDirectories.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <pwd.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

std::filesystem::path homeInUserDatabase() {
    constexpr std::size_t generousSize = std::size_t{64} * 1024;
    std::string buffer(generousSize, '\0');
    struct passwd record {};
    struct passwd* found = nullptr;
    const int error = ::getpwuid_r(::getuid(), &record, buffer.data(), buffer.size(), &found);
    if (found == nullptr) {
        throwSystemError("the user has no home folder", {}, error == 0 ? ENOENT : error);
    }
    return found->pw_dir;
}

}  // namespace

std::filesystem::path currentHomeDirectory() {
    const char* const home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? std::filesystem::path(home) : homeInUserDatabase();
}

}  // namespace browsersweep::posix
