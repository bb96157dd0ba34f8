// fcopyfile, of which the files for macOS ask for access control lists and extended attributes
// alone.

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <copyfile.h>
#include <sys/xattr.h>

#include "tests/darwin/emulation/Flags.h"

using namespace browsersweep::emulation;

namespace {

/** Linux keeps a list as an attribute of this name. */
constexpr const char* accessControlList = "system.posix_acl_access";

/** The system's own, which not everyone may set, are none that macOS knows. */
bool isCopied(const std::string& name, unsigned flags) {
    if (name == accessControlList) {
        return (flags & COPYFILE_ACL) != 0;
    }
    return (flags & COPYFILE_XATTR) != 0 && name.compare(0, 5, "user.") == 0;
}

/** What a call gives that is asked for its length first; nothing where it fails. */
template <typename Call>
std::vector<char> answerOf(Call call) {
    const ssize_t length = call(nullptr, std::size_t{0});
    std::vector<char> answer(length > 0 ? static_cast<std::size_t>(length) : 0);
    const ssize_t used = call(answer.data(), answer.size());
    answer.resize(used > 0 ? static_cast<std::size_t>(used) : 0);
    return answer;
}

std::vector<std::string> copiedNames(int file, unsigned flags) {
    const auto list =
        answerOf([&](char* into, std::size_t size) { return ::flistxattr(file, into, size); });
    std::vector<std::string> names;
    for (std::size_t place = 0; place < list.size(); place += std::strlen(&list[place]) + 1) {
        if (isCopied(&list[place], flags)) {
            names.emplace_back(&list[place]);
        }
    }
    return names;
}

bool copyAttribute(int source, int target, const char* name) {
    const auto value = answerOf(
        [&](char* into, std::size_t size) { return ::fgetxattr(source, name, into, size); });
    return ::fsetxattr(target, name, value.data(), value.size(), 0) == 0;
}

}  // namespace

/** The target loses what it had: it gets the source's, not both. */
int fcopyfile(int source, int target, copyfile_state_t /*state*/, unsigned flags) {
    if (isLocked(target)) {
        errno = EPERM;
        return -1;
    }
    for (const std::string& name : copiedNames(target, flags)) {
        if (::fremovexattr(target, name.c_str()) != 0) {
            return -1;
        }
    }
    for (const std::string& name : copiedNames(source, flags)) {
        if (!copyAttribute(source, target, name.c_str())) {
            return -1;
        }
    }
    return 0;
}
