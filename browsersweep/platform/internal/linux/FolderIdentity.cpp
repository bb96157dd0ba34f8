#include "browsersweep/platform/internal/posix/FolderIdentity.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

// Headers of systems before 5.8 know neither the question nor the field of the answer.
#ifdef STATX_MNT_ID
constexpr unsigned mountField = STATX_MNT_ID;

std::uint64_t mountIn(const struct statx& status) noexcept {
    return status.stx_mnt_id;
}
#else
constexpr unsigned mountField = 0;

std::uint64_t mountIn(const struct statx& /*status*/) noexcept {
    return 0;
}
#endif

/** The older way to the same number: what the kernel tells of each open descriptor. */
std::optional<std::uint64_t> mountOfDescriptor(int number) noexcept {
    constexpr std::string_view key = "mnt_id:";
    constexpr std::size_t enough = 256;
    std::array<char, 64> name{};
    std::snprintf(name.data(), name.size(), "/proc/self/fdinfo/%d", number);
    const FileDescriptor file(
        restarting([&] { return ::open(name.data(), O_RDONLY | O_CLOEXEC); }));
    std::array<char, enough> text{};
    const auto count =
        restarting([&] { return ::read(file.number(), text.data(), text.size() - 1); });
    const std::string_view found(text.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    const std::size_t place = found.find(key);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    return std::strtoull(&text.at(place + key.size()), nullptr, 10);
}

}  // namespace

std::optional<FolderIdentity> folderIdentity(const FileDescriptor& folder) noexcept {
    struct statx status = {};
    if (::statx(folder.number(), "", AT_EMPTY_PATH, STATX_INO | mountField, &status) != 0) {
        return std::nullopt;
    }
    const bool isTold = mountField != 0 && (status.stx_mask & mountField) != 0;
    const auto mount = isTold ? std::optional(mountIn(status)) : mountOfDescriptor(folder.number());
    if (!mount) {
        return std::nullopt;
    }
    return FolderIdentity{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino,
                          *mount};
}

bool isMountedOver(const FileDescriptor& folder, const char* name) noexcept {
    const FileDescriptor file(restarting(
        [&] { return ::openat(folder.number(), name, O_PATH | O_NOFOLLOW | O_CLOEXEC); }));
    const auto own = file ? folderIdentity(file) : std::nullopt;
    const auto above = folderIdentity(folder);
    return own && above && own->mount != above->mount;
}

FileDescriptor openPassage(int parent, const char* name, int flags) noexcept {
    return FileDescriptor(restarting(
        [&] { return ::openat(parent, name, O_PATH | O_DIRECTORY | O_CLOEXEC | flags); }));
}

}  // namespace browsersweep::posix
