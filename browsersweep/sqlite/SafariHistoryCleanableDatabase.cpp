#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

namespace browsersweep {
namespace {

constexpr std::string_view visits = "history_visits";
constexpr std::string_view items = "history_items";

constexpr std::string_view orphanStatement =
    "DELETE\n"
    "FROM history_items\n"
    "WHERE id NOT IN (\n"
    "    SELECT history_item FROM history_visits\n"
    ");";

// The condition stands between the first two and the last of these.
constexpr std::string_view countHead =
    "SELECT COUNT(*)\n"
    "FROM (\n"
    "    SELECT history_items.url, history_visits.visit_time\n";
constexpr std::string_view deleteHead =
    "DELETE\n"
    "FROM history_visits\n"
    "WHERE id IN (\n"
    "    SELECT history_visits.id\n";
constexpr std::string_view join =
    "    FROM history_visits LEFT JOIN history_items\n"
    "        ON history_items.id == history_visits.history_item\n"
    "    ";
constexpr std::string_view tail = "\n);";

std::string joined(std::string_view head, std::string_view condition) {
    std::string text(head);
    text += join;
    if (!condition.empty()) {
        text += "WHERE ";
        text += condition;
    }
    text += tail;
    return text;
}

SQLiteStatementComponents safariColumns() {
    const auto encode = [](const Date& date) { return decimalText(referenceSeconds(date)); };
    SQLiteStatementComponents::ColumnsForFiltering columns{
        "history_items.url",
        SQLiteStatementComponents::EncodableColumn<Date>{"history_visits.visit_time", encode}};
    return {std::string(visits), std::move(columns), {}};
}

bool qualifies(const SQLiteConnection& connection) {
    return connection.hasTable(items) && connection.hasTable(visits);
}

// Where SQLite looks for what belongs to a database: it follows links first.
std::filesystem::path withSuffix(const std::filesystem::path& file, std::string_view suffix) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::canonical(file, error);
    return std::filesystem::path(error ? file : target) += suffix;
}

constexpr std::array<std::string_view, 2> companionSuffixes = {"-wal", "-journal"};

// Two bytes of the header say whether the file is in the mode of write-ahead logs.
bool isInLogMode(const std::filesystem::path& file, const FileManager& fileManager) {
    constexpr std::size_t place = 18;
    constexpr std::uint8_t logMode = 2;
    const Bytes header = fileManager.firstBytes(file, place + 2);
    return header.size() == place + 2 && (header[place] == logMode || header[place + 1] == logMode);
}

bool wouldReadingWrite(const std::filesystem::path& file, const FileManager& fileManager) {
    for (const std::string_view suffix : companionSuffixes) {
        if (fileManager.fileExists(withSuffix(file, suffix)).exists) {
            return true;
        }
    }
    return isInLogMode(file, fileManager);
}

void copyCompanions(const std::filesystem::path& file, const std::filesystem::path& copy,
                    const FileManager& fileManager) {
    for (const std::string_view suffix : companionSuffixes) {
        const std::filesystem::path companion = withSuffix(file, suffix);
        if (fileManager.fileExists(companion).isFile()) {
            fileManager.copy(companion, std::filesystem::path(copy) += suffix);
        }
    }
}

}  // namespace

SafariHistoryCleanableDatabase::SafariHistoryCleanableDatabase(
    std::filesystem::path file, std::shared_ptr<const FileManager> fileManager)
    : SafariHistoryCleanableDatabase(std::move(file), safariColumns(), std::move(fileManager)) {}

SafariHistoryCleanableDatabase::SafariHistoryCleanableDatabase(
    std::filesystem::path file, SQLiteStatementComponents components,
    std::shared_ptr<const FileManager> fileManager)
    : file_(std::move(file)),
      components_(std::move(components)),
      fileManager_(std::move(fileManager)) {}

CleanableDataSize SafariHistoryCleanableDatabase::size(CleanableDataFilters filters) const {
    // Opening a file that is not there would create it.
    if (!fileManager_->fileExists(file_).isFile()) {
        return CleanableDataSize::zero;
    }
    const std::optional<std::int32_t> visitCount = count(filters);
    return visitCount ? databaseSize(*visitCount, file_, *fileManager_) : CleanableDataSize::zero;
}

std::optional<std::int32_t> SafariHistoryCleanableDatabase::count(
    CleanableDataFilters filters) const {
    if (!wouldReadingWrite(file_, *fileManager_)) {
        return countIn(file_, filters);
    }
    const TemporaryDatabaseCopy copy(file_, fileManager_);
    copyCompanions(file_, copy.path(), *fileManager_);
    return countIn(copy.path(), filters);
}

std::optional<std::int32_t> SafariHistoryCleanableDatabase::countIn(
    const std::filesystem::path& database, CleanableDataFilters filters) const {
    const SQLiteConnection connection(database);
    if (!qualifies(connection)) {
        return std::nullopt;
    }
    return connection.evaluate(countStatement(filters), CountEvaluator{});
}

void SafariHistoryCleanableDatabase::clean(CleanableDataFilters filters) const {
    if (!fileManager_->fileExists(file_).isFile()) {
        return;
    }
    const SQLiteConnection connection(file_);
    if (qualifies(connection)) {
        connection.evaluate(deleteStatement(filters), ExecuteEvaluator{});
        connection.evaluate(std::string(orphanStatement), ExecuteEvaluator{});
    }
}

std::string SafariHistoryCleanableDatabase::countStatement(CleanableDataFilters filters) const {
    if (filters.empty()) {
        return "SELECT COUNT(*) FROM history_visits;";
    }
    return joined(countHead, components_.filterCondition(filters));
}

std::string SafariHistoryCleanableDatabase::deleteStatement(CleanableDataFilters filters) const {
    if (filters.empty()) {
        return "DELETE FROM history_visits;";
    }
    return joined(deleteHead, components_.filterCondition(filters));
}

}  // namespace browsersweep
