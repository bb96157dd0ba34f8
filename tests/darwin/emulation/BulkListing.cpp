// getattrlistbulk: the values that are asked for, packed one after the other.

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/attr.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/darwin/emulation/Names.h"
#include "tests/darwin/emulation/Settings.h"

#undef fstat
#undef fstatat

using namespace browsersweep::emulation;

namespace {

/** The kinds as the system numbers them. */
std::uint32_t kindOf(mode_t mode) noexcept {
    switch (mode & S_IFMT) {
        case S_IFREG:
            return 1;
        case S_IFDIR:
            return 2;
        case S_IFBLK:
            return 3;
        case S_IFCHR:
            return 4;
        case S_IFLNK:
            return 5;
        case S_IFSOCK:
            return 6;
        default:
            return 7;
    }
}

class Packer {
public:
    template <typename Value>
    void add(const Value& value) {
        const auto* const bytes = reinterpret_cast<const char*>(&value);
        packed_.insert(packed_.end(), bytes, bytes + sizeof value);
    }

    /** The text itself stands behind the values, at a distance from its reference. */
    void addReferenceTo(std::string_view text) {
        reference_ = packed_.size();
        text_ = text;
        add(attrreference_t{});
    }

    std::vector<char> finish() {
        const attrreference_t reference{static_cast<std::int32_t>(packed_.size() - reference_),
                                        static_cast<std::uint32_t>(text_.size() + 1)};
        std::memcpy(&packed_[reference_], &reference, sizeof reference);
        packed_.insert(packed_.end(), text_.begin(), text_.end());
        packed_.resize((packed_.size() + 1 + 7) / 8 * 8);
        const auto length = static_cast<std::uint32_t>(packed_.size());
        std::memcpy(packed_.data(), &length, sizeof length);
        return std::move(packed_);
    }

private:
    std::vector<char> packed_;
    std::size_t reference_ = 0;
    std::string_view text_;
};

/** Directories have no file attributes; `sizes=no` is a file system that tells none. */
std::vector<char> packedEntry(std::string_view name, const struct stat& status,
                              const timespec& birth) {
    const bool hasSize = !S_ISDIR(status.st_mode) && !isOn("sizes=no");
    Packer packer;
    packer.add(std::uint32_t{0});
    packer.add(attribute_set_t{
        ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME | ATTR_CMN_OBJTYPE | ATTR_CMN_CRTIME, 0, 0,
        hasSize ? ATTR_FILE_DATALENGTH : 0, 0});
    packer.addReferenceTo(name);
    packer.add(kindOf(status.st_mode));
    packer.add(birth);
    if (hasSize) {
        packer.add(std::int64_t{status.st_size});
    }
    return packer.finish();
}

/** An entry that could not be examined: its name and the error. */
std::vector<char> packedError(std::string_view name, std::uint32_t error) {
    Packer packer;
    packer.add(std::uint32_t{0});
    packer.add(
        attribute_set_t{ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME | ATTR_CMN_ERROR, 0, 0, 0, 0});
    packer.add(error);
    packer.addReferenceTo(name);
    return packer.finish();
}

/** All names, from the beginning, whatever the descriptor's position is. */
std::vector<std::string> allNames(int directory) {
    std::vector<std::string> names;
    std::vector<char> piece(std::size_t{1} << 16);
    ::lseek(directory, 0, SEEK_SET);
    for (ssize_t count = 0; (count = ::getdents64(directory, piece.data(), piece.size())) > 0;) {
        for (ssize_t at = 0; at < count;) {
            const auto* const entry =
                reinterpret_cast<const dirent64*>(&piece[static_cast<std::size_t>(at)]);
            const std::string_view name = static_cast<const char*>(entry->d_name);
            if (name != "." && name != "..") {
                names.emplace_back(name);
            }
            at += entry->d_reclen;
        }
    }
    return names;
}

std::vector<char> packed(int directory, const std::string& name) {
    struct stat status = {};
    if (::fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return packedError(name, static_cast<std::uint32_t>(errno));
    }
    struct statx born = {};
    const bool isKnown =
        !isOn("birth=no") &&
        ::statx(directory, name.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &born) == 0 &&
        (born.stx_mask & STATX_BTIME) != 0;
    return packedEntry(
        name, status,
        isKnown ? timespec{born.stx_btime.tv_sec, born.stx_btime.tv_nsec} : timespec{});
}

}  // namespace

/**
 * The descriptor's position is the number of entries that were given, as on a file system that
 * counts them: once some of these are deleted, as many of those that follow are left out.
 */
int getattrlistbulk(int directory, void* wanted, void* buffer, std::size_t size,
                    std::uint64_t /*options*/) {
    const auto* const list = static_cast<const attrlist*>(wanted);
    if (isOn("bulk=no") || list->bitmapcount != ATTR_BIT_MAP_COUNT) {
        errno = isOn("bulk=no") ? ENOTSUP : EINVAL;
        return -1;
    }
    const off_t given = ::lseek(directory, 0, SEEK_CUR);
    if (given < 0) {
        return -1;
    }
    const auto names = allNames(directory);
    std::size_t position = static_cast<std::size_t>(given);
    std::size_t used = 0;
    int count = 0;
    for (; position < names.size(); ++position, ++count) {
        const auto entry = packed(directory, names[position]);
        if (used + entry.size() > size) {
            break;
        }
        std::copy(entry.begin(), entry.end(), static_cast<char*>(buffer) + used);
        used += entry.size();
    }
    ::lseek(directory, static_cast<off_t>(position), SEEK_SET);
    return count;
}
