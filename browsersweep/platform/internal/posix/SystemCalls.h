#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/platform/internal/posix/FileDescriptor.h"

namespace browsersweep::posix {

/** Repeats a call that a signal interrupted. */
template <typename Call>
auto restarting(Call call) noexcept(noexcept(call())) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/** Throws `filesystem_error` with the present `errno`. */
[[noreturn]] void throwSystemError(std::string_view doing, const std::filesystem::path& path);

/** Throws `filesystem_error` with this error. */
[[noreturn]] void throwSystemError(std::string_view doing, const std::filesystem::path& path,
                                   int error);

/** Opens a file, close-on-exec. Throws `filesystem_error`. */
FileDescriptor openFile(const std::filesystem::path& path, int flags, unsigned mode = 0);

/** Writes all of it. Throws `filesystem_error`. */
void writeAll(const FileDescriptor& file, BytesView bytes, const std::filesystem::path& path);

/** Reads up to the bytes' number; 0 at the end of the file. Throws `filesystem_error`. */
std::size_t readSome(const FileDescriptor& file, std::span<std::uint8_t> into,
                     const std::filesystem::path& path);

}  // namespace browsersweep::posix
