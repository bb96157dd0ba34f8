#include "cli/DatabaseNotes.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

#include "browsersweep/profiles/firefox/FirefoxCleanableLocalStorage.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

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

/** A database among the items, whatever wraps it. */
struct HeldDatabase {
    std::filesystem::path file;
    bool countsPendingChanges = false;
};

std::optional<HeldDatabase> databaseOf(const CleanableData& item) {
    if (const auto* const database = dynamic_cast<const CleanableSQLiteDatabase*>(&item)) {
        return HeldDatabase{database->file(), false};
    }
    if (const auto* const storage = dynamic_cast<const FirefoxCleanableLocalStorage*>(&item)) {
        return databaseOf(*storage->cleanableSQLiteDatabase());
    }
    if (const auto* const history = dynamic_cast<const SafariHistoryCleanableDatabase*>(&item)) {
        return HeldDatabase{history->file(), true};
    }
    return std::nullopt;
}

}  // namespace

bool hasPendingChanges(const std::filesystem::path& database) {
    return isNotEmpty(beside(database, "-wal")) || isHotJournal(beside(database, "-journal"));
}

std::vector<std::string> remarksOnDatabases(const CleanableDataList& list,
                                            CleanableDataFilters filters, bool wereCleaned) {
    std::vector<std::string> remarks;
    for (const auto& item : list.items()) {
        const auto database = databaseOf(*item);
        if (!database) {
            continue;
        }
        const auto name = database->file.filename().string();
        if (!database->countsPendingChanges && hasPendingChanges(database->file)) {
            remarks.push_back("the browser's latest changes to " + name + " are not counted");
        }
        // Sized through what wraps it, which may turn the filters into the database's own.
        if (wereCleaned && item->sizeIgnoringErrors(filters).itemCount.value > 0) {
            remarks.push_back("rows are left in " + name +
                              "; the browser seems to hold the database");
        }
    }
    return remarks;
}

}  // namespace browsersweep::cli
