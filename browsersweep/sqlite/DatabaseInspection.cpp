#include "browsersweep/sqlite/DatabaseInspection.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

namespace browsersweep {
namespace {

constexpr std::array<std::string_view, 3> companionSuffixes = {"-journal", "-wal", "-shm"};

// Where SQLite's file format puts the locks of a database and, in a log's index, those of writers.
constexpr std::int64_t firstLockByte = 0x40000000;
constexpr posix::LockRange locksOfReadersAndWriters{firstLockByte, 512, false};
constexpr posix::LockRange locksOfWriters{firstLockByte, 512, true};
constexpr posix::LockRange lockOfLogWriter{120, 1, true};

std::filesystem::path beside(const std::filesystem::path& file, std::string_view suffix) {
    return std::filesystem::path(file) += suffix;
}

std::optional<std::filesystem::path> refusedCompanion(const std::filesystem::path& file) {
    for (const std::string_view suffix : companionSuffixes) {
        auto companion = beside(file, suffix);
        const posix::FileFacts facts = posix::factsOf(companion);
        if (facts.exists && !facts.isRegularWithOneName()) {
            return companion;
        }
    }
    return std::nullopt;
}

/** A finished transaction leaves its journal without contents or with a header of zeros. */
bool isUnfinishedJournal(const std::filesystem::path& file, const FileManager& fileManager) {
    try {
        const Bytes start = fileManager.firstBytes(file, 1);
        return std::any_of(start.begin(), start.end(), [](auto byte) { return byte != 0; });
    } catch (const std::filesystem::filesystem_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) {
            return false;  // finished meanwhile
        }
        throw;
    }
}

bool hasPendingChanges(const std::filesystem::path& file, const FileManager& fileManager) {
    const auto log = posix::factsOf(beside(file, "-wal"));
    const auto journal = posix::factsOf(beside(file, "-journal"));
    return log.size > 0 ||
           (journal.isRegular && isUnfinishedJournal(beside(file, "-journal"), fileManager));
}

std::optional<long> lockHolder(const std::filesystem::path& file) {
    const auto index = beside(file, "-shm");
    if (!posix::factsOf(index).isRegular) {
        return posix::lockHolder(file, locksOfReadersAndWriters);
    }
    // With a log, readers keep nobody from writing.
    const auto holder = posix::lockHolder(file, locksOfWriters);
    return holder ? holder : posix::lockHolder(index, lockOfLogWriter);
}

void lookAtFiles(DatabaseInspection& found, const std::filesystem::path& file,
                 const FileManager& fileManager) {
    found.readError = posix::errorOfOpening(file, false);
    found.writeError = posix::errorOfOpening(file, true);
    if (!found.writeError) {
        found.writeError =
            posix::errorOfWritingInto(file.has_parent_path() ? file.parent_path() : ".");
    }
    found.refusedCompanion = refusedCompanion(file);
    found.lockHolder = lockHolder(file);
    found.isLocked = found.lockHolder.has_value();
    if (!found.readError && !found.refusedCompanion) {
        found.hasPendingChanges = hasPendingChanges(file, fileManager);
    }
}

/** Whether a check of the table finds nothing wrong. */
bool isWhole(const SQLiteConnection& connection, const std::string& table) {
    const TextRowsEvaluator<std::string> firstColumn(
        [](const SQLiteStatement& row) { return row.text(0); });
    const auto remarks = connection.evaluate("PRAGMA quick_check('" + table + "')", firstColumn);
    return remarks == std::vector<std::string>{"ok"};
}

TableFinding finding(const SQLiteConnection& connection, const TableQuestion& question) {
    TableFinding found{question.name, connection.hasTable(question.name), std::nullopt, false};
    if (connection.silentResultCode() != 0) {
        return found;
    }
    if (!found.exists) {
        found.rows = 0;
        found.isWhole = true;
        return found;
    }
    const std::int32_t rows = question.countStatement.empty()
                                  ? 0
                                  : connection.evaluate(question.countStatement, CountEvaluator{});
    if (connection.silentResultCode() == 0) {
        found.rows = rows;
    }
    found.isWhole = isWhole(connection, question.name) && connection.silentResultCode() == 0;
    return found;
}

void lookAtTables(DatabaseInspection& found, const std::filesystem::path& file,
                  std::span<const TableQuestion> questions,
                  const std::shared_ptr<const FileManager>& fileManager) {
    found.isOfOneMoment = DatabaseSnapshot(file, fileManager).read([&](const auto& connection) {
        found.tables.clear();
        for (const TableQuestion& question : questions) {
            found.tables.push_back(finding(connection, question));
        }
        found.resultCode = connection.silentResultCode();
    });
}

}  // namespace

bool DatabaseInspection::wasReadWhole() const noexcept {
    return isOfOneMoment && resultCode == 0 &&
           std::all_of(tables.begin(), tables.end(),
                       [](const TableFinding& table) { return table.rows && table.isWhole; });
}

std::optional<std::int64_t> DatabaseInspection::rows() const noexcept {
    if (!isOfOneMoment || resultCode != 0) {
        return std::nullopt;
    }
    std::int64_t sum = 0;
    for (const TableFinding& table : tables) {
        if (!table.rows) {
            return std::nullopt;
        }
        sum += *table.rows;
    }
    return sum;
}

DatabaseInspection inspectDatabase(const std::filesystem::path& file,
                                   std::span<const TableQuestion> questions,
                                   const std::shared_ptr<const FileManager>& fileManager) {
    DatabaseInspection found;
    const posix::FileFacts facts = posix::factsOf(file);
    found.exists = facts.exists;
    found.isRegularFile = facts.isRegular;
    if (!facts.isRegular) {
        return found;
    }
    try {
        lookAtFiles(found, file, *fileManager);
        if (!found.readError && !found.refusedCompanion) {
            lookAtTables(found, file, questions, fileManager);
        }
    } catch (const SQLiteError& error) {
        found.tables.clear();
        found.resultCode = error.resultCode();
        found.message = error.what();
    } catch (const std::filesystem::filesystem_error& error) {
        found.tables.clear();
        found.readError = error.code();
        found.message = error.what();
    }
    return found;
}

InspectableDatabase::~InspectableDatabase() = default;

}  // namespace browsersweep
