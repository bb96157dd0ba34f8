#include "tests/darwin/emulation/Names.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include "tests/darwin/emulation/Settings.h"

namespace browsersweep::emulation {
namespace {

// The plain system calls: the functions of the C library are the ones that are stood in for.

/** Links are not followed: one that leads nowhere is there. */
bool isThere(int directory, const std::string& path) noexcept {
    struct statx status = {};
    return ::syscall(SYS_statx, directory, path.c_str(), AT_SYMLINK_NOFOLLOW, 0, &status) == 0;
}

icu::UnicodeString decomposed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
}

std::string decomposed(const std::string& name) {
    std::string result;
    decomposed(icu::UnicodeString::fromUTF8(name)).toUTF8String(result);
    return result;
}

/** Names that a file system of macOS takes for the same have the same key. */
icu::UnicodeString keyOf(const std::string& name) {
    return decomposed(decomposed(icu::UnicodeString::fromUTF8(name)).foldCase());
}

bool isASCII(std::string_view name) noexcept {
    return std::all_of(name.begin(), name.end(),
                       [](char character) { return static_cast<unsigned char>(character) < 0x80; });
}

/** Compares a name with others; nearly all names are ASCII, and folders are large. */
class NameComparison {
public:
    explicit NameComparison(const std::string& name)
        : name_(name), key_(keyOf(name)), isASCII_(isASCII(name)) {}

    bool isSame(const char* other) const {
        return isASCII_ && isASCII(other) ? ::strcasecmp(name_.c_str(), other) == 0
                                          : keyOf(other) == key_;
    }

private:
    std::string name_;
    icu::UnicodeString key_;
    bool isASCII_;
};

struct StreamCloser {
    void operator()(DIR* stream) const noexcept { ::closedir(stream); }
};

/** The name in a folder that is the same as this one to a file system of macOS. */
std::optional<std::string> sameName(int directory, const std::string& folder,
                                    const std::string& name) {
    const long opened = ::syscall(SYS_openat, directory, folder.empty() ? "." : folder.c_str(),
                                  O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, StreamCloser> stream(
        opened < 0 ? nullptr : ::fdopendir(static_cast<int>(opened)));
    if (!stream) {
        return std::nullopt;
    }
    const NameComparison wanted(name);
    while (const dirent* const found = ::readdir(stream.get())) {
        if (wanted.isSame(static_cast<const char*>(found->d_name))) {
            return static_cast<const char*>(found->d_name);
        }
    }
    return std::nullopt;
}

std::string meantName(int directory, const std::string& folder, const std::string& name) {
    if (name == "." || name == ".." || !isUTF8(name) || isThere(directory, folder + name)) {
        return name;
    }
    if (auto same = sameName(directory, folder, name)) {
        return *same;
    }
    return isOn("names=decomposed") ? decomposed(name) : name;
}

}  // namespace

std::string meantPath(int directory, const char* path) {
    const bool isPlain = !isOn("names=insensitive") && !isOn("names=decomposed");
    if (isPlain || *path == '\0' || isThere(directory, path)) {
        return path;
    }
    const int error = errno;
    std::string meant;
    std::string_view rest = path;
    while (!rest.empty()) {
        const auto end = std::min(rest.find('/'), rest.size());
        if (end > 0) {
            meant += meantName(directory, meant, std::string(rest.substr(0, end)));
        }
        if (end < rest.size()) {
            meant += '/';
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    errno = error;
    return meant;
}

bool isUTF8(const std::string& path) {
    if (isASCII(path)) {
        return true;
    }
    std::string text;
    icu::UnicodeString::fromUTF8(path).toUTF8String(text);
    return text == path;
}

std::string absolutePath(int directory, const std::string& path) {
    const int error = errno;
    std::filesystem::path whole = path;
    if (whole.is_relative()) {
        char folder[PATH_MAX] = "";  // NOLINT: filled by the system
        const std::string link =
            directory == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/" + std::to_string(directory);
        if (::syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), folder, sizeof folder - 1) > 0) {
            whole = std::filesystem::path(static_cast<const char*>(folder)) / whole;
        }
    }
    errno = error;
    std::string text = whole.lexically_normal().string();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

}  // namespace browsersweep::emulation
