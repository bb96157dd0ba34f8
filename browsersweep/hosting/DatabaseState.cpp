#include "browsersweep/hosting/DatabaseState.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/platform/FileManager.h"
#include "browsersweep/platform/internal/Processes.h"

namespace browsersweep {
namespace {

std::filesystem::path beside(std::filesystem::path database, std::string_view suffix) {
    return database += suffix;
}

bool isNotEmpty(const std::filesystem::path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return !error && size > 0;
}

/**
 * A finished transaction leaves its journal without contents or with a header of zeros. What is no
 * regular file is no journal: opening a pipe as one would wait for a writer that never comes.
 */
bool isHotJournal(const std::filesystem::path& file) {
    constexpr std::array<std::uint8_t, 8> journalStart{0xd9, 0xd5, 0x05, 0xf9,
                                                       0x20, 0xa1, 0x63, 0xd7};
    try {
        const Bytes start = FileManager::defaultManager()->firstBytes(file, journalStart.size());
        return std::equal(start.begin(), start.end(), journalStart.begin(), journalStart.end());
    } catch (const std::filesystem::filesystem_error&) {
        return false;
    }
}

}  // namespace

bool hasPendingChanges(const std::filesystem::path& database) {
    return isNotEmpty(beside(database, "-wal")) || isHotJournal(beside(database, "-journal"));
}

bool isDatabaseHeld(const std::filesystem::path& database) noexcept {
    return isLockedByAnother(database);
}

std::vector<std::filesystem::path> databasesWithUncountedChanges(const CleanableData& item) {
    std::vector<std::filesystem::path> found;
    for (auto& place : item.locations()) {
        if (place.kind == CleanableDataLocation::Kind::database && !place.countsPendingChanges &&
            hasPendingChanges(place.path)) {
            found.push_back(std::move(place.path));
        }
    }
    return found;
}

std::vector<std::filesystem::path> databasesOf(const CleanableData& item) {
    std::vector<std::filesystem::path> found;
    for (auto& place : item.locations()) {
        if (place.kind == CleanableDataLocation::Kind::database) {
            found.push_back(std::move(place.path));
        }
    }
    return found;
}

}  // namespace browsersweep
