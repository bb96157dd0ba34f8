#include "browsersweep/platform/internal/posix/FolderReplacement.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browsersweep/platform/internal/posix/DirectoryWalk.h"
#include "browsersweep/platform/internal/posix/Durability.h"
#include "browsersweep/platform/internal/posix/ExchangedEntries.h"
#include "browsersweep/platform/internal/posix/ExtendedAttributes.h"
#include "browsersweep/platform/internal/posix/FileCopy.h"
#include "browsersweep/platform/internal/posix/FolderEntries.h"
#include "browsersweep/platform/internal/posix/OwnerAndMode.h"
#include "browsersweep/platform/internal/posix/ReplacementNames.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"

namespace browsersweep::posix {
namespace {

constexpr mode_t privateMode = S_IRUSR | S_IWUSR;

FileDescriptor openWithin(const FileDescriptor& folder, const std::string& name, int flags,
                          const std::filesystem::path& path) {
    FileDescriptor opened(restarting([&] {
        return ::openat(folder.number(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC, privateMode);
    }));
    if (!opened) {
        throwSystemError("cannot open", path);
    }
    return opened;
}

bool isPlainName(const std::string& name) noexcept {
    constexpr std::string_view refused("/\0", 2);
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(refused) == std::string::npos;
}

/** The folder that is to be replaced, and the one that holds it. */
struct OldFolder {
    OldFolder(std::filesystem::path where, const Gate& gate)
        : path(std::move(where)),
          parent(gate.openParent(path)),
          name(entryName(path).string()),
          folder(gate.openFolder(path)) {
        if (::fstat(folder.number(), &status) != 0) {
            throwSystemError("cannot examine", path);
        }
    }

    std::filesystem::path path;
    FileDescriptor parent;
    std::string name;
    FileDescriptor folder;
    struct stat status = {};
};

/** A folder beside the old one that is deleted again unless it was put in its place. */
class NewFolder {
public:
    explicit NewFolder(const OldFolder& old)
        : old_(old),
          name_(newFolderName(old.name)),
          path_(old.path.parent_path() / name_),
          folder_(made()) {}
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;
    ~NewFolder() {
        if (isInPlace_) {
            return;
        }
        for (const std::string& file : files_) {
            ::unlinkat(folder_.number(), file.c_str(), 0);
        }
        ::unlinkat(old_.parent.number(), name_.c_str(), AT_REMOVEDIR);
    }

    /** Where the old folder lies once they have changed places. */
    const std::filesystem::path& path() const noexcept { return path_; }

    void fill(const std::filesystem::path& contents, OperationControl* control) {
        const FileDescriptor source = openFile(contents, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        for (const FolderEntry& entry : entriesOf(source, contents, control)) {
            const auto from = contents / entry.name;
            if (entry.kind != FolderEntry::Kind::file) {
                throwSystemError("not a regular file", from, EINVAL);
            }
            const FileDescriptor file = openWithin(source, entry.name, O_RDONLY | O_NONBLOCK, from);
            add(entry.name, [&](const FileDescriptor& made, const std::filesystem::path& to) {
                copyThroughBuffer(file, from, made, to, control);
            });
        }
    }

    void fill(const std::map<std::string, Bytes>& files, OperationControl* control) {
        for (const auto& [name, contents] : files) {
            const BytesView bytes = contents;
            if (!isPlainName(name)) {
                throwSystemError("not a plain name", path_ / name, EINVAL);
            }
            continueOrThrow(control);
            add(name, [bytes](const FileDescriptor& made, const std::filesystem::path& to) {
                writeAll(made, bytes, to);
            });
        }
    }

    void putInPlace() {
        copyExtendedAttributes(old_.folder, folder_, path_);
        adoptMode(old_.status, folder_, path_);
        syncDirectory(folder_, path_);
        if (!exchangeEntries(old_.parent, name_.c_str(), old_.name.c_str())) {
            throwSystemError("cannot replace", old_.path);
        }
        isInPlace_ = true;
    }

private:
    FileDescriptor made() const {
        if (::mkdirat(old_.parent.number(), name_.c_str(), S_IRWXU) != 0) {
            throwSystemError("cannot create directory", path_);
        }
        FileDescriptor folder = openWithin(old_.parent, name_, O_RDONLY | O_DIRECTORY, path_);
        adoptOwner(old_.status, folder, path_);
        return folder;
    }

    template <typename Write>
    void add(const std::string& name, Write write) {
        const auto to = path_ / name;
        const FileDescriptor file = openWithin(folder_, name, O_WRONLY | O_CREAT | O_EXCL, to);
        files_.push_back(name);
        adoptOwner(old_.status, file, to);
        write(file, to);
        syncFile(file, to);
    }

    const OldFolder& old_;
    std::string name_;
    std::filesystem::path path_;
    FileDescriptor folder_;
    std::vector<std::string> files_;
    bool isInPlace_ = false;
};

/** The new folder's path, which leads to the old one from now on. */
template <typename Contents>
std::filesystem::path exchange(const OldFolder& old, const Contents& contents,
                               OperationControl* control) {
    NewFolder made(old);
    made.fill(contents, control);
    made.putInPlace();
    const auto parent = old.path.parent_path();
    syncDirectory(openWithin(old.parent, ".", O_RDONLY | O_DIRECTORY, parent), parent);
    return made.path();
}

template <typename Contents>
bool replaceWith(const std::filesystem::path& path, const Contents& contents, const Gate& gate,
                 const std::shared_ptr<OperationControl>& control) {
    const OldFolder old(path.has_filename() ? path : path.parent_path(), gate);
    return DirectoryWalk::removeTree(exchange(old, contents, control.get()), gate, control);
}

}  // namespace

bool replaceFolder(const std::filesystem::path& path, const std::filesystem::path& contents,
                   const Gate& gate, const std::shared_ptr<OperationControl>& control) {
    return replaceWith(path, contents, gate, control);
}

bool replaceFolder(const std::filesystem::path& path, const std::map<std::string, Bytes>& files,
                   const Gate& gate, const std::shared_ptr<OperationControl>& control) {
    return replaceWith(path, files, gate, control);
}

}  // namespace browsersweep::posix
