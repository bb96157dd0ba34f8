#include "browsersweep/platform/internal/posix/FileReplacement.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/Durability.h"
#include "browsersweep/platform/internal/posix/ExtendedAttributes.h"
#include "browsersweep/platform/internal/posix/OwnerAndMode.h"
#include "browsersweep/platform/internal/posix/ReplacementNames.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

/** The file that is to be replaced: its folder, its name there, and the file itself. */
struct OldFile {
    std::filesystem::path path;
    FileDescriptor folder;
    std::string name;
    FileDescriptor file;
    struct stat status = {};
};

FileDescriptor openWithin(const FileDescriptor& folder, const std::string& name, int flags,
                          const std::filesystem::path& path) {
    FileDescriptor file(restarting([&] {
        return ::openat(folder.number(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC,
                        S_IRUSR | S_IWUSR);
    }));
    if (!file) {
        throwSystemError("cannot open", path);
    }
    return file;
}

OldFile openOld(const std::filesystem::path& path, const Gate& gate) {
    FileDescriptor folder = gate.openParent(path);
    std::string name = entryName(path).string();
    FileDescriptor file = openWithin(folder, name, O_RDONLY | O_NONBLOCK, path);
    struct stat status = {};
    if (::fstat(file.number(), &status) != 0) {
        throwSystemError("cannot examine", path);
    }
    if (!S_ISREG(status.st_mode)) {
        throwSystemError("not a regular file", path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    return {path, std::move(folder), std::move(name), std::move(file), status};
}

/** A file beside the old one that is deleted again unless it was moved into its place. */
class NewFile {
public:
    explicit NewFile(const OldFile& old)
        : old_(old),
          name_(newFileName(old.name)),
          path_(old.path.parent_path() / name_),
          file_(openWithin(old.folder, name_, O_WRONLY | O_CREAT | O_EXCL, path_)) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!isInPlace_) {
            ::unlinkat(old_.folder.number(), name_.c_str(), 0);
        }
    }

    void fill(BytesView contents) const { writeAll(file_, contents, path_); }

    void adoptOwnerModeAndAttributes() const {
        adoptOwner(old_.status, file_, path_);
        copyExtendedAttributes(old_.file, file_, path_);
        adoptMode(old_.status, file_, path_);
    }

    void moveIntoPlace() {
        syncFile(file_, path_);
        const int folder = old_.folder.number();
        if (::renameat(folder, name_.c_str(), folder, old_.name.c_str()) != 0) {
            throwSystemError("cannot replace", old_.path);
        }
        isInPlace_ = true;
    }

private:
    const OldFile& old_;
    std::string name_;
    std::filesystem::path path_;
    FileDescriptor file_;
    bool isInPlace_ = false;
};

}  // namespace

void replaceFile(const std::filesystem::path& path, BytesView contents, const Gate& gate) {
    const OldFile old = openOld(path, gate);
    NewFile file(old);
    file.fill(contents);
    file.adoptOwnerModeAndAttributes();
    file.moveIntoPlace();
    syncDirectory(openWithin(old.folder, ".", O_RDONLY | O_DIRECTORY, path.parent_path()),
                  path.parent_path());
}

}  // namespace browsersweep::posix
