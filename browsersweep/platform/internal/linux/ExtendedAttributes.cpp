#include "browsersweep/platform/internal/posix/ExtendedAttributes.h"

#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <sys/xattr.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

constexpr const char* accessControlList = "system.posix_acl_access";

bool saysNone(int error) noexcept {
    return error == ENOTSUP || error == ENODATA;
}

/**
 * What a call gives that is asked for its length first. Between the two questions the answer may
 * grow; it is then asked again.
 */
template <typename Call>
std::string answerOf(Call call, const std::filesystem::path& path) {
    std::string answer;
    while (true) {
        const auto length = call(nullptr, std::size_t{0});
        answer.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        const auto used = length > 0 ? call(answer.data(), answer.size()) : length;
        if (used >= 0) {
            answer.resize(static_cast<std::size_t>(used));
            return answer;
        }
        if (saysNone(errno)) {
            return {};
        }
        if (errno != ERANGE) {
            throwSystemError("cannot read the attributes of", path);
        }
    }
}

std::vector<std::string> namesOf(const FileDescriptor& file, const std::filesystem::path& path) {
    const std::string list = answerOf(
        [&](char* into, std::size_t size) { return ::flistxattr(file.number(), into, size); },
        path);
    std::vector<std::string> names;
    for (std::size_t place = 0; place < list.size(); place += names.back().size() + 1) {
        names.emplace_back(list.c_str() + place);
    }
    return names;
}

/** What the system itself keeps there: it labels new files by its own rules. */
bool isTheSystems(std::string_view name) noexcept {
    return name.starts_with("security.") || name.starts_with("trusted.");
}

void copyAttribute(const char* name, const FileDescriptor& from, const FileDescriptor& to,
                   const std::filesystem::path& path) {
    const std::string value = answerOf(
        [&](char* into, std::size_t size) { return ::fgetxattr(from.number(), name, into, size); },
        path);
    if (::fsetxattr(to.number(), name, value.data(), value.size(), 0) != 0 && !isTheSystems(name)) {
        throwSystemError("cannot keep the attributes of", path);
    }
}

}  // namespace

void copyExtendedAttributes(const FileDescriptor& from, const FileDescriptor& to,
                            const std::filesystem::path& path) {
    if (::fremovexattr(to.number(), accessControlList) != 0 && !saysNone(errno)) {
        throwSystemError("cannot keep the attributes of", path);
    }
    for (const std::string& name : namesOf(from, path)) {
        copyAttribute(name.c_str(), from, to, path);
    }
}

}  // namespace browsersweep::posix
