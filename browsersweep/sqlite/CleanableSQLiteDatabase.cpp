#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

#include <utility>

#include "browsersweep/base/FatalError.h"
#include "browsersweep/sqlite/SQLiteConnection.h"
#include "browsersweep/sqlite/internal/TemporaryDatabaseCopy.h"

namespace browsersweep {
namespace {

using Measurement = CleanableDataSize::Measurement;

Measurement rowCountInTable(const SQLiteConnection& connection,
                            const SQLiteStatementComponents& table, CleanableDataFilters filters) {
    if (!connection.hasTable(table.tableName)) {
        return 0;
    }
    return connection.evaluate(table.sql("SELECT COUNT(*)", filters), CountEvaluator{});
}

}  // namespace

CleanableSQLiteDatabase::CleanableSQLiteDatabase(std::filesystem::path file,
                                                 std::vector<SQLiteStatementComponents> components,
                                                 std::shared_ptr<const FileManager> fileManager)
    : file_(std::move(file)),
      components_(std::move(components)),
      fileManager_(std::move(fileManager)) {}

bool CleanableSQLiteDatabase::hasWork() const noexcept {
    return !components_.empty() && fileManager_->fileExists(file_).isFile();
}

std::vector<CleanableDataPart> CleanableSQLiteDatabase::parts() const {
    std::vector<CleanableDataPart> parts;
    for (const SQLiteStatementComponents& table : components_) {
        parts.push_back(
            {table.tableName, table.sight(),
             std::make_shared<CleanableSQLiteDatabase>(file_, std::vector{table}, fileManager_)});
    }
    return parts;
}

CleanableDataSize CleanableSQLiteDatabase::size(CleanableDataFilters filters) const {
    if (!hasWork()) {
        return CleanableDataSize::zero;
    }
    return databaseSize(countOnCopy(filters), file_, *fileManager_);
}

std::int64_t CleanableSQLiteDatabase::countOnCopy(CleanableDataFilters filters) const {
    const TemporaryDatabaseCopy copy(file_, fileManager_);
    const auto control = fileManager_->control();
    const SQLiteConnection connection(copy.path(), control);
    Measurement total;
    for (const SQLiteStatementComponents& table : components_) {
        const Measurement rows = rowCountInTable(connection, table, filters);
        total = total + rows;
        if (control) {
            control->count({0, 0, static_cast<std::uint64_t>(rows.value)});
        }
    }
    return total.value;
}

void CleanableSQLiteDatabase::clean(CleanableDataFilters filters) const {
    if (!hasWork() || !fileManager_->reaches(file_)) {
        return;
    }
    const SQLiteConnection connection(file_, fileManager_->control());
    if (!fileManager_->reaches(file_)) {  // a link may have appeared before the file was opened
        return;
    }
    for (const SQLiteStatementComponents& table : components_) {
        if (connection.hasTable(table.tableName)) {
            connection.evaluate(table.sql("DELETE", filters), ExecuteEvaluator{});
        }
    }
}

DatabaseInspection CleanableSQLiteDatabase::inspect(CleanableDataFilters filters) const {
    std::vector<TableQuestion> questions;
    for (const SQLiteStatementComponents& table : components_) {
        questions.push_back({table.tableName, table.sql("SELECT COUNT(*)", filters)});
    }
    return inspectDatabase(file_, questions, fileManager_);
}

CleanableDataSize databaseSize(std::int64_t rowCount, const std::filesystem::path& file,
                               const FileManager& fileManager) {
    const FileAttributes attributes = fileManager.attributes(file);
    if (rowCount < 1) {
        return {rowCount, 0};
    }
    const std::uint64_t bytes = attributes.size.value_or(0);
    if (!std::in_range<std::int64_t>(bytes)) {
        fatalError("a file's size does not fit in 63 bits");
    }
    return {rowCount, {static_cast<std::int64_t>(bytes), true}};
}

}  // namespace browsersweep
