#include "browsersweep/platform/Accessibility.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "browsersweep/platform/internal/posix/FileDescriptor.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep {
namespace {

// clang-format off
constexpr std::array meanings{
    std::pair{EACCES,  Accessibility::deniedByPermissions},
    std::pair{EPERM,   Accessibility::deniedByPrivacyProtection},
    std::pair{ENOENT,  Accessibility::missing},
    std::pair{ENOTDIR, Accessibility::missing},
    std::pair{EDEADLK, Accessibility::reachable},  // it lies in the cloud and could be fetched
};

struct Words {
    std::string_view rawValue;
    std::string_view explanation;
};

constexpr std::array<Words, 4> words{{
    {"reachable", ""},
    {"missing", "Nothing is there."},
    {"deniedByPermissions",
     "Its permissions forbid it to this user; its owner can change them."},
    {"deniedByPrivacyProtection",
     "macOS protects it: give the application or terminal that runs this program Full Disk Access, "
     "in the privacy settings, and start it again."},
}};
// clang-format on

/** A pipe or a device is not waited for. */
int errorOfOpening(const std::filesystem::path& path) noexcept {
    const posix::WithoutDownloads whileOpening;
    const FileDescriptor file(
        posix::restarting([&] { return ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
    return file ? 0 : errno;
}

std::optional<Accessibility> meaningOf(int error) noexcept {
    if (error == 0) {
        return Accessibility::reachable;
    }
    for (const auto& [known, meaning] : meanings) {
        if (known == error) {
            return meaning;
        }
    }
    return std::nullopt;
}

/** Whether the nearest folder above that is there is a protected one. */
bool isHidden(const std::filesystem::path& path) {
    std::filesystem::path above = path.lexically_normal();
    while (above.has_relative_path()) {
        above = above.parent_path();
        const auto meaning = meaningOf(errorOfOpening(above));
        if (meaning != Accessibility::missing) {
            return meaning == Accessibility::deniedByPrivacyProtection;
        }
    }
    return false;
}

}  // namespace

Accessibility accessibility(const std::filesystem::path& path) {
    const int error = errorOfOpening(path);
    const auto meaning = meaningOf(error);
    if (!meaning) {
        posix::throwSystemError("cannot open", path, error);
    }
    return *meaning == Accessibility::missing && isHidden(path)
               ? Accessibility::deniedByPrivacyProtection
               : *meaning;
}

std::string_view explanation(Accessibility accessibility) noexcept {
    return words[static_cast<std::size_t>(accessibility)].explanation;
}

std::string_view rawValue(Accessibility accessibility) noexcept {
    return words[static_cast<std::size_t>(accessibility)].rawValue;
}

}  // namespace browsersweep
