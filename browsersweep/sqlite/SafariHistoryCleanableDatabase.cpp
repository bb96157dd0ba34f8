#include "browsersweep/sqlite/SafariHistoryCleanableDatabase.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "browsersweep/documents/internal/DecimalText.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

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

std::vector<CleanableDataPart> SafariHistoryCleanableDatabase::parts() const {
    return {{std::string(visits), components_.sight(),
             std::make_shared<SafariHistoryCleanableDatabase>(*this)}};
}

CleanableDataSize SafariHistoryCleanableDatabase::size(CleanableDataFilters filters) const {
    // Opening a file that is not there would create it.
    if (!fileManager_->fileExists(file_).isFile()) {
        return CleanableDataSize::zero;
    }
    std::optional<std::int32_t> visitCount;
    const bool isOneState =
        DatabaseSnapshot(file_, fileManager_).read([&](const SQLiteConnection& connection) {
            visitCount = countIn(connection, filters);
        });
    const auto control = fileManager_->control();
    if (control) {
        control->count({0, 0, static_cast<std::uint64_t>(visitCount.value_or(0))});
    }
    const CleanableDataSize size =
        visitCount ? databaseSize(*visitCount, file_, *fileManager_) : CleanableDataSize::zero;
    return isOneState ? size : size.approximate();
}

std::optional<std::int32_t> SafariHistoryCleanableDatabase::countIn(
    const SQLiteConnection& connection, CleanableDataFilters filters) const {
    if (!qualifies(connection)) {
        return std::nullopt;
    }
    return connection.evaluate(countStatement(filters), CountEvaluator{});
}

void SafariHistoryCleanableDatabase::clean(CleanableDataFilters filters) const {
    if (!fileManager_->fileExists(file_).isFile() || !fileManager_->reaches(file_)) {
        return;
    }
    const SQLiteConnection connection(file_, fileManager_->control());
    // A link may have appeared before the file was opened.
    if (fileManager_->reaches(file_) && qualifies(connection)) {
        connection.evaluate(deleteStatement(filters), ExecuteEvaluator{});
        connection.evaluate(addressStatement(), ExecuteEvaluator{});
    }
}

DatabaseInspection SafariHistoryCleanableDatabase::inspect(CleanableDataFilters filters) const {
    const std::array questions{
        TableQuestion{std::string(items), ""},
        TableQuestion{std::string(visits), countStatement(filters)},
    };
    return inspectDatabase(file_, questions, fileManager_);
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

std::string SafariHistoryCleanableDatabase::addressStatement() {
    return std::string(orphanStatement);
}

}  // namespace browsersweep
