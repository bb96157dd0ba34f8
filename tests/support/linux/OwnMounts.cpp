#include "tests/support/linux/OwnMounts.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <sched.h>
#include <sys/mount.h>

#include "tests/support/ChildProcess.h"

namespace browsersweep::tests {
namespace {

constexpr int withoutRights = 3;

bool takeOwnMounts() {
    return ::unshare(CLONE_NEWNS) == 0 &&
           ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace

std::optional<int> runWithOwnMounts(const std::function<void()>& body) {
    const int status = runInProcess([&body] {
        if (!takeOwnMounts()) {
            return withoutRights;
        }
        body();
        return 0;
    });
    return status == withoutRights ? std::nullopt : std::optional(status);
}

void mountFolder(const std::filesystem::path& folder, const std::filesystem::path& place) {
    if (::mount(folder.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot mount");
    }
}

void mountDisk(const std::filesystem::path& place, std::size_t bytes) {
    const std::string size = "size=" + std::to_string(bytes);
    if (::mount("tmpfs", place.c_str(), "tmpfs", 0, size.c_str()) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot mount");
    }
}

}  // namespace browsersweep::tests
