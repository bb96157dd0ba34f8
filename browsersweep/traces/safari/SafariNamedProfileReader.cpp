#include "browsersweep/traces/safari/SafariNamedProfileReader.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "browsersweep/profiles/safari/SafariNamedProfile.h"
#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"
#include "browsersweep/sites/internal/DatabaseQuery.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

struct Row {
    std::string identifier;
    std::optional<std::string> title;
};

constexpr const char* listedProfiles =
    "SELECT external_uuid, title FROM bookmarks WHERE subtype = 2 AND external_uuid IS NOT NULL"
    " AND external_uuid <> 'DefaultProfile' ORDER BY id";

std::vector<Row> rowsIn(sqlite3* database, OperationControl* control) {
    DatabaseQuery query(database, listedProfiles, control);
    std::vector<Row> rows;
    while (query.next()) {
        rows.push_back(
            {std::string(query.text(0)),
             query.isNull(1) ? std::nullopt : std::optional(std::string(query.text(1)))});
    }
    return rows;
}

/** The store of open tabs meets the same error and tells it. */
std::vector<Row> listedIn(const fs::path& file, const std::shared_ptr<const FileManager>& manager) {
    if (!manager->reaches(file) || !manager->fileExists(file).isFile()) {
        return {};
    }
    std::vector<Row> rows;
    try {
        DatabaseSnapshot(file, manager).read([&](const SQLiteConnection& connection) {
            rows = rowsIn(connection.dbPointer(), manager->control().get());
        });
    } catch (const SQLiteError&) {
        rows.clear();
    } catch (const fs::filesystem_error&) {
        rows.clear();
    }
    return rows;
}

void addFolders(const FileManager& fileManager, const fs::path& folder,
                std::set<std::string>& identifiers) {
    for (const FolderEntry& entry : fileManager.entries(folder)) {
        if (entry.kind == FolderEntry::Kind::folder && isSafariIdentifier(entry.name)) {
            identifiers.insert(inCapitals(entry.name));
        }
    }
}

}  // namespace

std::vector<std::shared_ptr<const BrowserProfile>> SafariNamedProfileReader::profiles() const {
    const fs::path library = home_.directoryProvider()->libraryDirectory();
    std::set<std::string> found;
    addFolders(*home_.fileManager(), safariProfileFolders(library), found);
    addFolders(*home_.fileManager(), safariWebsiteFolders(library), found);
    std::vector<std::shared_ptr<const BrowserProfile>> profiles;
    std::set<std::string> listed;
    for (Row& row :
         listedIn(safariContainer(library) / "Safari/SafariTabs.db", home_.fileManager())) {
        if (listed.insert(inCapitals(row.identifier)).second) {
            profiles.push_back(std::make_shared<SafariNamedProfile>(
                std::move(row.title), std::move(row.identifier), home_));
        }
    }
    for (const std::string& identifier : found) {
        if (!listed.contains(identifier)) {
            profiles.push_back(
                std::make_shared<SafariNamedProfile>(std::nullopt, identifier, home_));
        }
    }
    return profiles;
}

}  // namespace browsersweep
