#include "browsersweep/sites/internal/DatabaseTraceStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include <sqlite3.h>

#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sites/internal/DatabaseQuery.h"
#include "browsersweep/sites/internal/SiteDatabase.h"
#include "browsersweep/sites/internal/TableCatalogue.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/sites/internal/TraceTableSQL.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

namespace browsersweep {
namespace {

/** A rule with the statements that it comes to in one database. */
struct Rule {
    const TraceTable& table;
    TraceTableSQL sql;
};

std::vector<Rule> rulesIn(sqlite3* database, std::span<const TraceTable> tables,
                          OperationControl* control) {
    std::vector<Rule> rules;
    for (const TraceTable& table : tables) {
        TraceTableSQL sql(table, columnsIn(database, table, control));
        if (sql.applies()) {
            rules.push_back({table, std::move(sql)});
        }
    }
    return rules;
}

bool isTaken(const Rule& rule, const ForgetRequest& request) {
    return rule.sql.isMixed() ? request.takesMixedOf(rule.table.kind)
                              : request.takes(rule.table.kind);
}

struct Epoch {
    double ticksPerSecond;
    double secondsBefore1970;
};

// In the order of the forms.
constexpr std::array<Epoch, 5> epochs{{
    {1e6, 11644473600.0},
    {1e6, 0.0},
    {1e3, 0.0},
    {1.0, 0.0},
    {1.0, -referenceDateSince1970},
}};

std::optional<Date> dateOf(double ticks, TimeForm form) {
    if (!(ticks > 0)) {
        return std::nullopt;
    }
    const Epoch& epoch = epochs.at(static_cast<std::size_t>(form));
    return dateFrom1970Seconds(ticks / epoch.ticksPerSecond - epoch.secondsBefore1970);
}

// What several related rows name comes as lines. Messages and the like are bytes, without lines.
void appendHosts(std::vector<std::string>& hosts, SiteForm form, std::string_view text) {
    const bool isOfBytes = form == SiteForm::message || form == SiteForm::bytes;
    while (!text.empty()) {
        const auto end = isOfBytes ? text.size() : std::min(text.find('\n'), text.size());
        for (std::string& host : hostsIn(form, text.substr(0, end))) {
            hosts.push_back(std::move(host));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

CleanableDataSize rowsOf(std::int64_t count, std::int64_t bytes) {
    return {count, {bytes, true}};
}

using SizesByKey = std::map<std::string, CleanableDataSize, std::less<>>;

SizesByKey sizesOf(const RowFiles& rowFiles, const std::filesystem::path& database,
                   const FileManager& fileManager) {
    SizesByKey sizes;
    for (const RowFile& file : rowFiles.find(fileManager, database)) {
        CleanableDataSize& size = sizes[file.key];
        size = size + sizeOf(file, fileManager);
    }
    return sizes;
}

void listRows(TraceCollector& traces, sqlite3* database, const Rule& rule, const RowFiles& files,
              const SizesByKey& sizes, OperationControl* control) {
    const std::vector<SiteForm> forms = rule.sql.listedForms();
    const bool hasFiles = files.table == rule.table.name;
    DatabaseQuery query(database, rule.sql.listing(hasFiles ? files.key : "NULL"), control);
    std::vector<std::string> hosts;
    while (query.next()) {
        hosts.clear();
        for (std::size_t index = 0; index < forms.size(); ++index) {
            appendHosts(hosts, forms[index], query.text(static_cast<int>(index) + 3));
        }
        CleanableDataSize size = rowsOf(1, query.number(1));
        if (hasFiles) {
            const auto found = sizes.find(query.text(2));
            size = found == sizes.end() ? size : size + found->second;
        }
        traces.add(rule.table.kind, hosts, size, dateOf(query.real(0), rule.table.lastUsed.form));
    }
}

RowKeys keysOf(sqlite3* database, const std::string& sql, OperationControl* control) {
    RowKeys keys;
    DatabaseQuery query(database, sql, control);
    while (query.next()) {
        keys.emplace(query.text(0));
    }
    return keys;
}

std::string meaningOf(const TraceTable& table) {
    return table.meaning.empty() ? "entries that do not say which site they belong to"
                                 : std::string(table.meaning);
}

/** What only tidies up after other rules. */
bool isAfterwards(const Rule& rule) {
    return rule.table.rule == TableRule::orphans || rule.table.rule == TableRule::loosens;
}

bool isListed(const Rule& rule) {
    return !isAfterwards(rule) && rule.table.rule != TableRule::follows;
}

}  // namespace

/** What a request comes to in a database. */
struct DatabaseTraceStore::Survey {
    bool isAnythingToDo = false;
    std::vector<KeptTrace> kept;
};

DatabaseTraceStore::DatabaseTraceStore(TraceDatabase database,
                                       std::shared_ptr<const FileManager> fileManager)
    : database_(std::move(database)), fileManager_(std::move(fileManager)) {}

std::set<TraceKind> DatabaseTraceStore::kinds() const {
    std::set<TraceKind> kinds;
    for (const TraceTable& table : database_.tables) {
        kinds.insert(table.kind);
    }
    return kinds;
}

std::vector<std::filesystem::path> DatabaseTraceStore::places() const {
    std::vector<std::filesystem::path> places{database_.file};
    if (!database_.files.table.empty()) {
        places.push_back(database_.files.place(database_.file));
    }
    return places;
}

// An error of asking is thrown: what cannot be looked at is not nothing.
// What lies behind a link or on another mount is not the browser's: neither listed nor forgotten.
bool DatabaseTraceStore::exists() const {
    return fileManager_->reaches(database_.file) &&
           std::filesystem::exists(std::filesystem::symlink_status(database_.file));
}

// A log that a killed browser left, or a journal whose contents a browser let stand.
bool DatabaseTraceStore::hasLeftovers() const {
    constexpr std::array<std::string_view, 2> suffixes{"-wal", "-journal"};
    return std::any_of(suffixes.begin(), suffixes.end(), [this](std::string_view suffix) {
        return posix::factsOf(std::filesystem::path(database_.file) += suffix).size > 0;
    });
}

ProtectedAddresses DatabaseTraceStore::protectedAddresses() const {
    return database_.protectedAddresses ? database_.protectedAddresses() : ProtectedAddresses();
}

TraceListing DatabaseTraceStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceListing listing;
    if (!exists()) {
        return listing;
    }
    const DatabaseSnapshot snapshot(database_.file, fileManager_);
    const bool isOfOneMoment = snapshot.read(
        [&](const SQLiteConnection& connection) { listing = listingOf(connection.dbPointer()); });
    if (!isOfOneMoment) {
        throw SQLiteError("the database changes without pause", SQLITE_BUSY);
    }
    return listing;
}

TraceListing DatabaseTraceStore::listingOf(sqlite3* database) const {
    OperationControl* const control = fileManager_->control().get();
    const SiteFunctions functions(database, SiteSelection::everything(), protectedAddresses());
    const SizesByKey sizes = database_.files.table.empty()
                                 ? SizesByKey()
                                 : sizesOf(database_.files, database_.file, *fileManager_);
    TraceCollector traces;
    TraceListing listing;
    for (const Rule& rule : rulesIn(database, database_.tables, control)) {
        if (rule.sql.isMixed()) {
            DatabaseQuery totals(database, rule.sql.totals(), control);
            if (totals.next() && totals.number(0) > 0) {
                listing.notBySite.push_back({rule.table.kind, database_.file,
                                             rowsOf(totals.number(0), totals.number(1)),
                                             meaningOf(rule.table)});
            }
        } else if (isListed(rule)) {
            listRows(traces, database, rule, database_.files, sizes, control);
        }
    }
    listing.bySite = traces.takeTraces();
    return listing;
}

std::vector<KeptTrace> DatabaseTraceStore::keptIn(sqlite3* database,
                                                  const ForgetRequest& request) const {
    OperationControl* const control = fileManager_->control().get();
    std::vector<KeptTrace> kept;
    for (const Rule& rule : rulesIn(database, database_.tables, control)) {
        const bool mayStay = rule.sql.isMixed() && request.takes(rule.table.kind) &&
                             !request.takesMixedOf(rule.table.kind);
        if (mayStay && numberOf(database, rule.sql.question(request.sites), control) != 0) {
            kept.push_back({rule.table.kind, database_.file,
                            meaningOf(rule.table) +
                                "; not stored by site, so it goes for all sites or for none"});
        }
    }
    return kept;
}

DatabaseTraceStore::Survey DatabaseTraceStore::surveyOf(sqlite3* database,
                                                        const ForgetRequest& request) const {
    OperationControl* const control = fileManager_->control().get();
    const SiteFunctions functions(database, request.sites, protectedAddresses());
    Survey survey{false, keptIn(database, request)};
    bool isAnyTaken = false;
    for (const Rule& rule : rulesIn(database, database_.tables, control)) {
        const bool isAsked =
            isTaken(rule, request) && !(isAfterwards(rule) && request.sites.isOnly());
        isAnyTaken = isAnyTaken || isAsked;
        if (isAsked && numberOf(database, rule.sql.question(request.sites), control) != 0) {
            survey.isAnythingToDo = true;
            return survey;
        }
    }
    survey.isAnythingToDo =
        isAnyTaken && !request.sites.isOnly() &&
        (hasLeftovers() || numberOf(database, "PRAGMA freelist_count", control) > 0);
    return survey;
}

// Opening it for changes would play a journal back, and empty a log into it.
DatabaseTraceStore::Survey DatabaseTraceStore::surveyOfSnapshot(
    const ForgetRequest& request) const {
    Survey survey;
    const DatabaseSnapshot snapshot(database_.file, fileManager_);
    const bool isOfOneMoment = snapshot.read([&](const SQLiteConnection& connection) {
        survey = surveyOf(connection.dbPointer(), request);
    });
    if (!isOfOneMoment) {
        throw SQLiteError("the database changes without pause", SQLITE_BUSY);
    }
    return survey;
}

bool DatabaseTraceStore::hasRemains(const SiteDatabase& database,
                                    const ForgetRequest& request) const {
    if (request.sites.isOnly()) {
        return false;
    }
    const SiteFunctions functions(database.handle(), request.sites, {});
    const FileKeys known = keysOfFiles(database.handle());
    if (!goingFiles(known, known, request).empty()) {
        return true;
    }
    const auto rules = rulesIn(database.handle(), database_.tables, fileManager_->control().get());
    return std::any_of(rules.begin(), rules.end(), [&](const Rule& rule) {
        return isTaken(rule, request) && database.hasRemains(rule.table.name);
    });
}

void DatabaseTraceStore::remove(const SiteDatabase& database, const ForgetRequest& request) const {
    OperationControl* const control = fileManager_->control().get();
    const SiteFunctions functions(database.handle(), request.sites, protectedAddresses());
    database.change([&] {
        const FileKeys before = keysOfFiles(database.handle());
        for (const Rule& rule : rulesIn(database.handle(), database_.tables, control)) {
            if (!isTaken(rule, request)) {
                continue;
            }
            const std::string parents = rule.sql.parentQuestion();
            const bool isWithoutParents = !parents.empty() && database.number(parents) == 0;
            database.run(isWithoutParents ? rule.sql.removalOfAll()
                                          : rule.sql.removal(request.sites));
        }
        removeRowFiles(goingFiles(before, keysOfFiles(database.handle()), request), *fileManager_);
    });
}

DatabaseTraceStore::FileKeys DatabaseTraceStore::keysOfFiles(sqlite3* database) const {
    OperationControl* const control = fileManager_->control().get();
    for (const Rule& rule : rulesIn(database, database_.tables, control)) {
        if (rule.table.name == database_.files.table) {
            const std::string keys = rule.sql.allValues(database_.files.key);
            return {rule.table.kind, keysOf(database, keys, control)};
        }
    }
    return {};
}

// A row without its files is of no use to the browser, and forgotten by the next run; files without
// their row would stay for ever. So they go before the change of rows is final. Where more than
// certain sites is meant, those go too whose row was gone already.
std::vector<RowFile> DatabaseTraceStore::goingFiles(const FileKeys& before, const FileKeys& after,
                                                    const ForgetRequest& request) const {
    if (!before.kind) {
        return {};
    }
    const bool takesLost = request.takes(*before.kind) && !request.sites.isOnly();
    const auto files = database_.files.find(*fileManager_, database_.file);
    return chosenFiles(files, [&](const std::string& key) {
        return before.keys.contains(key) ? !after.keys.contains(key) : takesLost;
    });
}

ForgetOutcome DatabaseTraceStore::forget(const ForgetRequest& request) const {
    ForgetOutcome outcome;
    if (!exists()) {
        return outcome;
    }
    if (hasLeftovers()) {
        Survey survey = surveyOfSnapshot(request);
        if (!survey.isAnythingToDo) {
            outcome.kept = std::move(survey.kept);
            return outcome;
        }
    }
    {
        SiteDatabase database(database_.file, fileManager_);
        if (!exists()) {  // a link may have appeared before the file was opened
            return outcome;
        }
        Survey survey = surveyOf(database.handle(), request);
        outcome.kept = std::move(survey.kept);
        if (!survey.isAnythingToDo && !hasRemains(database, request)) {
            return outcome;
        }
        remove(database, request);
        outcome.isWithoutRemains = database.compact();
    }
    removeColdJournal();
    return outcome;
}

// A journal that says nothing more holds the pages of before. SQLite deletes it with the next
// transaction that writes one, which a database with a log never does.
void DatabaseTraceStore::removeColdJournal() const {
    const std::filesystem::path journal = std::filesystem::path(database_.file) += "-journal";
    if (posix::factsOf(journal).size == 0) {
        return;
    }
    const Bytes start = fileManager_->firstBytes(journal, 1);
    if (!start.empty() && start.front() == 0) {
        fileManager_->removeFile(journal);
    }
}

}  // namespace browsersweep
