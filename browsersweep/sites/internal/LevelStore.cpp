#include "browsersweep/sites/internal/LevelStore.h"

#include <filesystem>
#include <utility>

#include "browsersweep/platform/internal/WantOfRoom.h"
#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

using Need = LevelRecord::Need;

/** What a record takes of a file is not known: its texts may be compressed. */
CleanableDataSize sizeOf(const LevelRecord& record, std::string_view key, std::string_view value) {
    return {record.isItem ? 1 : 0, {key.size() + value.size(), true}};
}

bool isGoing(const LevelRecord& record, EntrySelector& selector) {
    return record.need == Need::site && selector.selects(record.hosts);
}

}  // namespace

LevelSchema::~LevelSchema() = default;

void LevelSchema::learn(std::string_view /*key*/, std::string_view /*value*/) {}

LevelCompanions::~LevelCompanions() = default;

LevelStore::LevelStore(const LevelRow& row, const std::filesystem::path& profile,
                       std::shared_ptr<const FileManager> fileManager)
    : row_(row),
      fileManager_(std::move(fileManager)),
      database_(profile / row.path, fileManager_) {}

std::unique_ptr<LevelSchema> LevelStore::learntSchema(const KnownHosts& knownHosts) const {
    auto schema = row_.schema(knownHosts);
    if (schema->learns()) {
        database_.read(
            [&schema](std::string_view key, std::string_view value) { schema->learn(key, value); });
    }
    return schema;
}

std::unique_ptr<LevelCompanions> LevelStore::companions() const {
    return row_.companions == nullptr ? nullptr : row_.companions(path(), fileManager_);
}

TraceListing LevelStore::list(const KnownHosts& knownHosts) const {
    const auto schema = learntSchema(knownHosts);
    const auto beside = companions();
    TraceCollector collector;
    CleanableDataSize unknown;
    database_.read([&](std::string_view key, std::string_view value) {
        const LevelRecord record = schema->recordOf(key, value);
        CleanableDataSize size = sizeOf(record, key, value);
        if (beside) {
            size = size + beside->sizeOf(key, value);
        }
        collector.add(row_.kind, record.hosts, size, record.lastUsed);
        if (record.need == Need::site && record.hosts.empty()) {
            unknown = unknown + size;
        }
    });
    TraceListing listing{collector.takeTraces(), {}};
    if (!row_.unknown.empty() && unknown.itemCount.value > 0) {
        listing.notBySite.push_back({row_.kind, path(), unknown, std::string(row_.unknown)});
    }
    return listing;
}

void LevelStore::removeCompanions(const LevelSchema& schema, EntrySelector& selector) const {
    if (const auto beside = companions()) {
        database_.read([&](std::string_view key, std::string_view value) {
            if (isGoing(schema.recordOf(key, value), selector)) {
                beside->remove(key, value);
            }
        });
    }
}

void LevelStore::removeRecords(const LevelSchema& schema, EntrySelector& selector) const {
    bool isAnyNeeded = false;
    const auto stays = [&](std::string_view key, std::string_view value) {
        const LevelRecord record = schema.recordOf(key, value);
        const bool itStays = !isGoing(record, selector);
        isAnyNeeded = isAnyNeeded || (itStays && record.need != Need::others);
        return itStays;
    };
    if (database_.rewrite(stays, [&isAnyNeeded] { return isAnyNeeded; })) {
        return;
    }
    if (const auto beside = companions()) {
        beside->removeAll();
    }
    removeDatabase();
}

// At once, as far as the next run can see: half a database could not be read, and nothing more of
// it be forgotten. Only where not even an empty folder has room it goes file by file.
void LevelStore::removeDatabase() const {
    try {
        fileManager_->replaceFolderWithFiles(path(), {});
    } catch (const std::filesystem::filesystem_error& error) {
        if (!isWantOfRoom(error.code())) {
            throw;
        }
    }
    fileManager_->removeFolder(path());
}

// What lies beside goes first: once the records are gone nobody knows whose it is.
ForgetOutcome LevelStore::forget(const ForgetRequest& request) const {
    if (!request.takes(row_.kind)) {
        return {};
    }
    removeLeftBeside(*fileManager_, path());
    if (!database_.exists()) {
        return {};
    }
    const auto schema = learntSchema(request.knownHosts);
    EntrySelector selector(request, !row_.unknown.empty());
    removeCompanions(*schema, selector);
    removeRecords(*schema, selector);
    ForgetOutcome outcome;
    if (selector.hasKeptUnknown()) {
        outcome.kept.push_back({row_.kind, path(), std::string(row_.unknown)});
    }
    return outcome;
}

}  // namespace browsersweep
