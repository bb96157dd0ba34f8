#include "browsersweep/hosting/DatabaseState.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <system_error>

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

/** A finished transaction leaves its journal without contents or with a header of zeros. */
bool isHotJournal(const std::filesystem::path& file) {
    constexpr std::string_view journalStart = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
    std::array<char, journalStart.size()> start{};
    std::ifstream(file, std::ios::binary).read(start.data(), start.size());
    return std::string_view(start.data(), start.size()) == journalStart;
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
