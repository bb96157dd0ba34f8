#include "cli/DatabaseNotes.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <system_error>

#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

namespace browsersweep::cli {
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

std::vector<std::string> remarksOnDatabases(const CleanableDataList& list,
                                            CleanableDataFilters filters, bool wereCleaned) {
    std::vector<std::string> remarks;
    for (const auto& item : list.items()) {
        const auto* const database = dynamic_cast<const CleanableSQLiteDatabase*>(item.get());
        if (database == nullptr) {
            continue;
        }
        const auto name = database->file().filename().string();
        if (hasPendingChanges(database->file())) {
            remarks.push_back("the browser's latest changes to " + name + " are not counted");
        }
        if (wereCleaned && database->sizeIgnoringErrors(filters).itemCount.value > 0) {
            remarks.push_back("rows are left in " + name +
                              "; the browser seems to hold the database");
        }
    }
    return remarks;
}

}  // namespace browsersweep::cli
