#include "browsersweep/platform/internal/posix/DirectoryListing.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/attr.h>
#include <unistd.h>

#include "browsersweep/platform/internal/darwin/BirthDate.h"
#include "browsersweep/platform/internal/posix/SystemCalls.h"
#include "browsersweep/platform/internal/posix/WithoutDownloads.h"

namespace browsersweep::posix {
namespace {

constexpr std::size_t pieceSize = std::size_t{64} * 1024;
constexpr fsobj_type_t directoryType = 2;  // VDIR, which not every set of headers declares
constexpr std::size_t longestName = 1024;  // with its end, whatever the file system allows

/** What one question to the system brought: entries, and the bytes that hold their names. */
struct Piece {
    std::vector<char> bytes;
    std::vector<ListedEntry> entries;
    std::size_t position = 0;

    bool isUsedUp() const noexcept { return position == entries.size(); }
};

/** Takes values off the front of an entry. They are aligned to four bytes alone. */
class EntryReader {
public:
    explicit EntryReader(const char* start) noexcept : start_(start) {}

    template <typename Value>
    Value take() noexcept {
        Value value{};
        std::memcpy(&value, start_, sizeof value);
        start_ += sizeof value;
        return value;
    }

    const char* position() const noexcept { return start_; }

private:
    const char* start_;
};

attrlist wantedAttributes() noexcept {
    attrlist wanted{};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_ERROR | ATTR_CMN_NAME |
                        ATTR_CMN_OBJTYPE | ATTR_CMN_CRTIME;
    wanted.fileattr = ATTR_FILE_DATALENGTH;
    return wanted;
}

/** The order of the values is fixed; those that an entry lacks are left out. */
ListedEntry parsedEntry(EntryReader reader) noexcept {
    ListedEntry entry{"", std::nullopt, std::nullopt};
    EntryStatus status;
    const auto given = reader.take<attribute_set_t>();
    if ((given.commonattr & ATTR_CMN_ERROR) != 0) {
        reader.take<std::uint32_t>();  // an entry by itself: what is missing is asked for later
    }
    if ((given.commonattr & ATTR_CMN_NAME) != 0) {
        const char* const reference = reader.position();
        entry.name = reference + reader.take<attrreference_t>().attr_dataoffset;
    }
    if ((given.commonattr & ATTR_CMN_OBJTYPE) != 0) {
        status.isDirectory = reader.take<fsobj_type_t>() == directoryType;
        entry.isDirectory = status.isDirectory;
    }
    if ((given.commonattr & ATTR_CMN_CRTIME) != 0) {
        status.creationDate = birthDate(reader.take<timespec>());
    }
    if ((given.fileattr & ATTR_FILE_DATALENGTH) != 0) {
        status.size = static_cast<std::uint64_t>(reader.take<off_t>());
    }
    const bool isWhole =
        (given.commonattr & ATTR_CMN_CRTIME) != 0 && (given.fileattr & ATTR_FILE_DATALENGTH) != 0;
    if (entry.isDirectory == false && isWhole) {
        entry.status = status;
    }
    return entry;
}

/** What a file system says that does not know the call, or not for this directory. */
bool meansUnsupported(int error) noexcept {
    return error == ENOTSUP || error == EINVAL || error == ENOSYS;
}

bool isSelfOrParent(std::string_view name) noexcept {
    return name == "." || name == "..";
}

/** Entries that wait, packed: of each its kind, its name and a zero byte. A folder may be large. */
class EntriesAhead {
public:
    void add(const ListedEntry& entry) {
        text_ += entry.isDirectory ? (*entry.isDirectory ? directory : other) : unknown;
        text_.append(entry.name) += '\0';
    }

    std::optional<ListedEntry> take() noexcept {
        if (position_ == text_.size()) {
            return std::nullopt;
        }
        const char kind = text_[position_];
        const char* const name = &text_[position_ + 1];
        position_ += 1 + std::strlen(name) + 1;
        const auto isDirectory = kind == unknown ? std::nullopt : std::optional(kind == directory);
        return ListedEntry{name, isDirectory, std::nullopt};
    }

    void clear() noexcept {
        text_.clear();
        position_ = 0;
    }

private:
    static constexpr char directory = 'd';
    static constexpr char other = 'o';
    static constexpr char unknown = 'u';

    std::string text_;
    std::size_t position_ = 0;
};

std::set<std::string> namesOf(const Piece& piece) {
    std::set<std::string> names;
    for (const ListedEntry& entry : piece.entries) {
        names.insert(entry.name);
    }
    return names;
}

struct StreamCloser {
    void operator()(DIR* stream) const noexcept { ::closedir(stream); }
};

std::optional<bool> isDirectory(unsigned char type) noexcept {
    return type == DT_UNKNOWN ? std::nullopt : std::optional(type == DT_DIR);
}

}  // namespace

/**
 * The system tells names, kinds, sizes and birth times of many entries in one call. Where it
 * refuses, names and perhaps kinds come in the plain way.
 *
 * It may leave entries out of a listing once others of it are deleted. As long as nothing is
 * deleted one piece is held at a time; before the first deletion the rest is read.
 */
struct DirectoryListing::Implementation {
    int directory = -1;
    bool hasBegun = false;
    bool isAtEnd = false;
    bool tellsStatus = true;
    std::unique_ptr<DIR, StreamCloser> stream;  ///< of the plain way alone
    Piece present;
    EntriesAhead ahead;

    void start(int newDirectory) noexcept {
        directory = newDirectory;
        hasBegun = false;
        isAtEnd = false;
        stream.reset();
        present.entries.clear();
        present.position = 0;
        ahead.clear();
    }

    /** Fills a piece that is used up. It stays without entries at the end of the listing. */
    std::error_code read(Piece& piece) {
        const WithoutDownloads whileReading;
        piece.entries.clear();
        piece.position = 0;
        piece.bytes.resize(pieceSize);
        const int error = stream ? readPlainly(piece) : readInBulk(piece);
        hasBegun = true;
        isAtEnd = error != 0 || piece.entries.empty();
        // What says so is a folder whose contents have never been on this disk.
        return {error == EDEADLK ? 0 : error, std::generic_category()};
    }

private:
    int readInBulk(Piece& piece) {
        attrlist wanted = wantedAttributes();
        const int count = restarting([&] {
            return ::getattrlistbulk(directory, &wanted, piece.bytes.data(), piece.bytes.size(), 0);
        });
        if (count < 0) {
            return meansUnsupported(errno) && !hasBegun ? openStream(piece) : errno;
        }
        const char* entry = piece.bytes.data();
        for (int index = 0; index < count; ++index) {
            EntryReader reader(entry);
            entry += reader.take<std::uint32_t>();
            piece.entries.push_back(parsedEntry(reader));
        }
        return 0;
    }

    /** A stream owns its descriptor; the directory's own stays its owner's. */
    int openStream(Piece& piece) {
        FileDescriptor own(::fcntl(directory, F_DUPFD_CLOEXEC, 0));
        stream.reset(own ? ::fdopendir(own.number()) : nullptr);
        if (!stream) {
            return errno;
        }
        own.release();
        return readPlainly(piece);
    }

    int readPlainly(Piece& piece) {
        std::size_t used = 0;
        while (used + longestName <= piece.bytes.size()) {
            errno = 0;
            const dirent* const found = ::readdir(stream.get());
            if (found == nullptr) {
                return errno;
            }
            const std::string_view name = static_cast<const char*>(found->d_name);
            if (!isSelfOrParent(name)) {
                char* const kept = &piece.bytes[used];
                *std::copy(name.begin(), name.end(), kept) = '\0';
                used += name.size() + 1;
                piece.entries.push_back({kept, isDirectory(found->d_type), std::nullopt});
            }
        }
        return 0;
    }
};

DirectoryListing::DirectoryListing() : implementation_(std::make_unique<Implementation>()) {}

DirectoryListing::~DirectoryListing() = default;

void DirectoryListing::start(int directory) noexcept {
    implementation_->start(directory);
}

std::error_code DirectoryListing::next(std::optional<ListedEntry>& entry) {
    Implementation& own = *implementation_;
    entry.reset();
    if (own.present.isUsedUp() && !own.isAtEnd) {
        if (const std::error_code error = own.read(own.present)) {
            return error;
        }
    }
    if (own.present.isUsedUp()) {
        entry = own.ahead.take();
        return {};
    }
    entry = own.present.entries[own.present.position++];
    if (!own.tellsStatus) {
        entry->status.reset();
    }
    return {};
}

std::error_code DirectoryListing::prepareForDeletion() {
    Implementation& own = *implementation_;
    own.tellsStatus = false;
    Piece piece;
    // Files that appear meanwhile push others back: those may come a second time.
    for (std::set<std::string> known; !own.isAtEnd; known = namesOf(piece)) {
        if (known.empty()) {
            known = namesOf(own.present);
        }
        if (const std::error_code error = own.read(piece)) {
            return error;
        }
        for (const ListedEntry& entry : piece.entries) {
            if (known.count(entry.name) == 0) {
                own.ahead.add(entry);
            }
        }
    }
    return {};
}

}  // namespace browsersweep::posix
