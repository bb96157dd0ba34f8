#include "browsersweep/traces/safari/internal/ServiceWorkerStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/documents/internal/Base64.h"
#include "browsersweep/documents/internal/Digest.h"
#include "browsersweep/sites/ListingParts.h"
#include "browsersweep/sites/internal/DatabaseQuery.h"
#include "browsersweep/sites/internal/DatabaseTraceStore.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TableCatalogue.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

constexpr std::array tables{
    TraceTable{.name = "Records",
               .kind = TraceKind::serviceWorkers,
               .columns = {{{"origin"}, {"topOrigin", SiteForm::originIdentifier}, {"scriptURL"}}},
               .lastUsed = {"lastUpdateCheckTime", TimeForm::secondsSince1970}},
};

constexpr std::string_view scriptFolder = "Scripts/V1";
constexpr std::size_t largestSalt = 1024;

bool isDatabase(std::string_view name) noexcept {
    constexpr std::string_view beginning = "ServiceWorkerRegistrations-";
    constexpr std::string_view ending = ".sqlite3";
    return name.starts_with(beginning) && name.ends_with(ending) &&
           name.substr(beginning.size()).find_first_not_of("0123456789") ==
               name.size() - beginning.size() - ending.size();
}

/** "https_www.example.com_0", or with nothing as the port, is "https://www.example.com". */
std::string originOf(std::string_view identifier) {
    const auto scheme = identifier.find('_');
    const auto port = identifier.rfind('_');
    if (scheme == std::string_view::npos || scheme == port) {
        return {};
    }
    std::string origin(identifier.substr(0, scheme));
    origin.append("://").append(identifier.substr(scheme + 1, port - scheme - 1));
    const std::string_view number = identifier.substr(port + 1);
    if (!number.empty() && number != "0") {
        origin.append(":").append(number);
    }
    return origin;
}

/** Older versions stored the whole address of the scope. */
std::string scopeOf(std::string_view origin, std::string_view scope) {
    return scope.starts_with('/') ? std::string(origin).append(scope) : std::string(scope);
}

/** Whether the database has what their scripts are found by: an empty or another one has not. */
bool hasWorkers(sqlite3* database, OperationControl* control) {
    const TableColumns columns = columnsIn(database, tables.front(), control);
    return columns.own.contains("origin") && columns.own.contains("topOrigin") &&
           columns.own.contains("scopeURL");
}

void add(TraceListing& listing, const TraceListing& more) {
    for (const Trace& trace : more.bySite) {
        const auto found = std::find_if(
            listing.bySite.begin(), listing.bySite.end(),
            [&](const Trace& each) { return each.site == trace.site && each.kind == trace.kind; });
        if (found == listing.bySite.end()) {
            listing.bySite.push_back(trace);
        } else {
            merge(*found, trace);
        }
    }
    std::sort(listing.bySite.begin(), listing.bySite.end(),
              [](const Trace& one, const Trace& other) { return one.site < other.site; });
}

}  // namespace

/** Whose the scripts of a registration are, and where they lie below the folder of scripts. */
struct ServiceWorkerStore::Worker {
    std::vector<std::string> hosts;
    fs::path scripts;
};

std::span<const TraceTable> serviceWorkerTables() noexcept {
    return tables;
}

std::string nameOfScriptFolder(const std::string& salt, const std::string& text) {
    const auto digest = sha256(salt + text);
    std::string name = toBase64(textOf(digest));
    name.erase(name.find_last_not_of('=') + 1);
    std::replace(name.begin(), name.end(), '+', '-');
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

ServiceWorkerStore::ServiceWorkerStore(fs::path folder,
                                       std::shared_ptr<const FileManager> fileManager)
    : folder_(std::move(folder)), fileManager_(std::move(fileManager)) {}

std::vector<fs::path> ServiceWorkerStore::databases() const {
    std::vector<fs::path> found;
    for (const FolderEntry& entry : fileManager_->entries(folder_)) {
        if (entry.kind == FolderEntry::Kind::file && isDatabase(entry.name)) {
            found.push_back(folder_ / entry.name);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<ServiceWorkerStore::Worker> ServiceWorkerStore::workersIn(
    const fs::path& database) const {
    const Bytes saltBytes =
        firstBytesIfThere(*fileManager_, folder_ / scriptFolder / "salt", largestSalt);
    const std::string salt(textOf(saltBytes));
    std::vector<Worker> workers;
    const auto read = [&](const SQLiteConnection& connection) {
        workers.clear();
        if (!hasWorkers(connection.dbPointer(), fileManager_->control().get())) {
            return;
        }
        DatabaseQuery query(connection.dbPointer(),
                            "SELECT origin, topOrigin, scopeURL FROM Records",
                            fileManager_->control().get());
        while (query.next()) {
            const std::string origin(query.text(0));
            const std::string top = originOf(query.text(1));
            Worker worker{hostsIn(SiteForm::address, origin), {}};
            for (std::string& host : hostsIn(SiteForm::address, top)) {
                worker.hosts.push_back(std::move(host));
            }
            worker.scripts = fs::path(nameOfScriptFolder(salt, top)) /
                             nameOfScriptFolder(salt, scopeOf(origin, query.text(2)));
            workers.push_back(std::move(worker));
        }
    };
    if (!DatabaseSnapshot(database, fileManager_).read(read)) {
        throw SQLiteError("the database changes without pause", SQLITE_BUSY);
    }
    return workers;
}

TraceListing ServiceWorkerStore::list(const KnownHosts& knownHosts) const {
    TraceListing listing;
    for (const fs::path& file : databases()) {
        add(listing, DatabaseTraceStore({file, tables}, fileManager_).list(knownHosts));
    }
    return listing;
}

void ServiceWorkerStore::removeScripts(const ForgetRequest& request) const {
    std::set<fs::path> going;
    std::set<fs::path> staying;
    SiteMatcher matcher(request.sites);
    for (const fs::path& file : databases()) {
        for (const Worker& worker : workersIn(file)) {
            (matcher.selectsHosts(worker.hosts) ? going : staying).insert(worker.scripts);
        }
    }
    const fs::path scripts = folder_ / scriptFolder;
    for (const FolderEntry& page : fileManager_->entries(scripts)) {
        if (page.kind != FolderEntry::Kind::folder) {
            continue;
        }
        for (const FolderEntry& scope : fileManager_->entries(scripts / page.name)) {
            const fs::path place = fs::path(page.name) / scope.name;
            const bool isGoing = going.contains(place) || !request.sites.isOnly();
            if (isGoing && !staying.contains(place)) {
                removeAll(*fileManager_, scripts / page.name, scope);
            }
        }
        if (fileManager_->entries(scripts / page.name).empty()) {
            removeAll(*fileManager_, scripts, page);
        }
    }
}

ForgetOutcome ServiceWorkerStore::forget(const ForgetRequest& request) const {
    ForgetOutcome outcome;
    if (!request.takes(TraceKind::serviceWorkers)) {
        return outcome;
    }
    removeScripts(request);
    for (const fs::path& file : databases()) {
        const auto ofFile = DatabaseTraceStore({file, tables}, fileManager_).forget(request);
        outcome.isWithoutRemains = outcome.isWithoutRemains && ofFile.isWithoutRemains;
    }
    return outcome;
}

}  // namespace browsersweep
