#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string_view>
#include <system_error>
#include <utility>

#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sqlite/internal/NoRoom.h"
#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

namespace browsersweep {
namespace {

/** A browser that writes without pause is not waited for. */
constexpr int maximumAttempts = 5;

constexpr std::string_view indexSuffix = "-shm";
// The database itself comes first. A log's index is made anew from the log.
constexpr std::array<std::string_view, 3> copiedSuffixes = {"", "-wal", "-journal"};

using Facts = std::array<posix::FileFacts, copiedSuffixes.size()>;
using Marks = std::array<std::uint64_t, copiedSuffixes.size()>;

std::filesystem::path withSuffix(const std::filesystem::path& file, std::string_view suffix) {
    return std::filesystem::path(file) += suffix;
}

Facts factsOfAll(const std::filesystem::path& file) {
    Facts facts;
    std::transform(
        copiedSuffixes.begin(), copiedSuffixes.end(), facts.begin(),
        [&](std::string_view suffix) { return posix::factsOf(withSuffix(file, suffix)); });
    return facts;
}

/**
 * Whether the copies hold what the files held at one moment, that of asking for their facts here:
 * what was read before it and again after it was there at that moment, too.
 */
bool areOfOneMoment(const std::filesystem::path& file, const std::filesystem::path& copy,
                    const Facts& before, OperationControl* control) {
    if (factsOfAll(file) != before) {
        return false;
    }
    for (std::size_t index = 0; index < copiedSuffixes.size(); ++index) {
        const std::string_view suffix = copiedSuffixes.at(index);
        if (before.at(index).exists &&
            !posix::haveEqualContents(withSuffix(file, suffix), withSuffix(copy, suffix),
                                      control)) {
            return false;
        }
    }
    return factsOfAll(file) == before;
}

/** Does something with a companion. False where it has vanished, which is a change like any other.
 */
template <typename Work>
bool unlessVanished(Work work) {
    try {
        return work();
    } catch (const std::filesystem::filesystem_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) {
            return false;
        }
        throw;
    }
}

bool copyCompanions(const std::filesystem::path& file, const std::filesystem::path& copy,
                    const Facts& before, const FileManager& fileManager) {
    return unlessVanished([&] {
        for (std::size_t index = 1; index < copiedSuffixes.size(); ++index) {
            const std::string_view suffix = copiedSuffixes.at(index);
            if (before.at(index).exists) {
                fileManager.copy(withSuffix(file, suffix), withSuffix(copy, suffix));
            }
        }
        return true;
    });
}

// Two bytes of the header say whether the file is in the mode of write-ahead logs.
bool isInLogMode(const std::filesystem::path& file, const FileManager& fileManager) {
    constexpr std::size_t place = 18;
    constexpr std::uint8_t logMode = 2;
    const Bytes header = fileManager.firstBytes(file, place + 2);
    return header.size() == place + 2 && (header[place] == logMode || header[place + 1] == logMode);
}

}  // namespace

DatabaseSnapshot::DatabaseSnapshot(std::filesystem::path file,
                                   std::shared_ptr<const FileManager> fileManager)
    : file_(std::move(file)), fileManager_(std::move(fileManager)) {}

bool DatabaseSnapshot::has(std::string_view suffix) const {
    return fileManager_->fileExists(withSuffix(file_, suffix)).exists;
}

bool DatabaseSnapshot::mayHaveCompanions() const {
    return has("-wal") || has("-journal") || isInLogMode(file_, *fileManager_);
}

// Without its index a log cannot be read where it lies but by making one.
bool DatabaseSnapshot::canBeReadInPlace() const {
    return has(indexSuffix) || (!has("-wal") && !isInLogMode(file_, *fileManager_));
}

bool DatabaseSnapshot::read(const Use& use) const {
    for (int attempt = 1;; ++attempt) {
        const bool isLast = attempt == maximumAttempts;
        if ((canBeReadInPlace() && readInPlace(use)) || readCopyIfThereIsRoom(use, isLast)) {
            return true;
        }
        if (isLast) {
            return false;
        }
    }
}

// A lock met here says nothing of what a copy shows, unless there is nothing beside the database.
bool DatabaseSnapshot::readInPlace(const Use& use) const {
    try {
        const auto connection = SQLiteConnection::readingOnly(file_, fileManager_->control());
        use(connection);
        const int silent = connection.silentResultCode();
        return silent == 0 ||
               (SQLiteError::kindOf(silent) != SQLiteError::Kind::locked && !mayHaveCompanions());
    } catch (const SQLiteError&) {
        if (!mayHaveCompanions()) {
            throw;
        }
        return false;
    }
}

// A full disk is what people clean up for. What is copied may leave no room for the log's index.
bool DatabaseSnapshot::readCopyIfThereIsRoom(const Use& use, bool isLast) const {
    const bool isReadable = !has("-journal") && !has(indexSuffix);
    try {
        return readCopy(use, isLast);
    } catch (const std::exception& error) {
        if (!isReadable || !saysNoRoom(error)) {
            throw;
        }
    }
    return readAsItLies(use);
}

bool DatabaseSnapshot::readAsItLies(const Use& use) const {
    OperationControl* const control = fileManager_->control().get();
    const Facts before = factsOfAll(file_);
    const auto marks = [&] {
        Marks found{};
        for (std::size_t index = 0; index < copiedSuffixes.size(); ++index) {
            if (before.at(index).exists) {
                const auto path = withSuffix(file_, copiedSuffixes.at(index));
                found.at(index) = posix::markOfContents(path, control);
            }
        }
        return found;
    };
    Marks atFirst{};
    const auto take = [&] {
        atFirst = marks();
        return true;
    };
    if (!unlessVanished(take)) {
        return false;
    }
    use(SQLiteConnection::readingAsItLies(file_, fileManager_->control()));
    return unlessVanished([&] { return factsOfAll(file_) == before && marks() == atFirst; });
}

bool DatabaseSnapshot::readCopy(const Use& use, bool isLast) const {
    const Facts before = factsOfAll(file_);
    const TemporaryDatabaseCopy copy(file_, fileManager_);
    const bool isProven =
        copyCompanions(file_, copy.path(), before, *fileManager_) && unlessVanished([&] {
            return areOfOneMoment(file_, copy.path(), before, fileManager_->control().get());
        });
    if (isProven || isLast) {
        use(SQLiteConnection(copy.path(), fileManager_->control()));
    }
    return isProven;
}

}  // namespace browsersweep
