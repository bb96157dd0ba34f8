#include "browsersweep/platform/internal/posix/FileReplacement.h"

#include <cstdio>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/UniqueString.h"
#include "browsersweep/platform/internal/posix/Durability.h"
#include "browsersweep/platform/internal/posix/FileCopy.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

/** A file that is deleted again unless it was moved into its place. */
class NewFile {
public:
    explicit NewFile(std::filesystem::path path)
        : path_(std::move(path)), file_(createPrivateFile(path_)) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!isInPlace_) {
            ::unlink(path_.c_str());
        }
    }

    void fill(BytesView contents) const { writeAll(file_, contents, path_); }

    void adoptModeAndOwner(const struct stat& old) const {
        struct stat own {};
        if (::fstat(file_.number(), &own) != 0) {
            throwSystemError("cannot examine", path_);
        }
        const bool sameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
        if (!sameOwner && ::fchown(file_.number(), old.st_uid, old.st_gid) != 0) {
            throwSystemError("cannot keep the owner of", path_);
        }
        if (::fchmod(file_.number(), old.st_mode & static_cast<mode_t>(~S_IFMT)) != 0) {
            throwSystemError("cannot keep the mode of", path_);
        }
    }

    void moveTo(const std::filesystem::path& path) {
        syncFile(file_, path_);
        if (std::rename(path_.c_str(), path.c_str()) != 0) {
            throwSystemError("cannot replace", path);
        }
        isInPlace_ = true;
    }

private:
    std::filesystem::path path_;
    FileDescriptor file_;
    bool isInPlace_ = false;
};

}  // namespace

void replaceFile(const std::filesystem::path& path, BytesView contents) {
    const std::filesystem::path target = std::filesystem::canonical(path);
    struct stat old {};
    if (::stat(target.c_str(), &old) != 0) {
        throwSystemError("cannot examine", target);
    }
    NewFile file(target.parent_path() / ("." + target.filename().string() + "." + uniqueString()));
    file.fill(contents);
    file.adoptModeAndOwner(old);
    file.moveTo(target);
    syncDirectory(target.parent_path());
}

}  // namespace browsersweep::posix
