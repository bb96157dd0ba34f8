#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/RowFiles.h"
#include "browsersweep/sites/internal/SiteFunctions.h"
#include "browsersweep/sites/internal/TraceTable.h"

struct sqlite3;

namespace browsersweep {

class SiteDatabase;

/** A database, and what is to be known of it. */
struct TraceDatabase {
    std::filesystem::path file;
    std::span<const TraceTable> tables;
    /** The addresses that `isProtected` knows, found afresh each time; empty: none. */
    std::function<ProtectedAddresses()> protectedAddresses{};
    RowFiles files{};
};

/**
 * A database of which some rows are traces, as tables say.
 *
 * The item count of a listing is exact: the rows that name a site, without those that only belong
 * to such a row. The byte count is approximate: the lengths of these rows' values.
 */
class DatabaseTraceStore : public TraceStore {
public:
    DatabaseTraceStore(TraceDatabase database, std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return database_.file; }
    std::vector<std::filesystem::path> places() const override;
    std::set<TraceKind> kinds() const override;

    /** Reads a state of one moment, with what waits in a log or journal. */
    TraceListing list(const KnownHosts& knownHosts) const override;

    /**
     * One transaction for all rows, within which the files that belong to them go, too; then the
     * file is written anew. Where nothing is selected no byte is written; only where more than
     * certain sites is meant the file is also freed of what earlier deletions left in it.
     */
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    struct Survey;
    /** What files are known by in the rows that are there; without a kind there are no files. */
    struct FileKeys {
        std::optional<TraceKind> kind;
        RowKeys keys;
    };

    bool exists() const;
    bool hasLeftovers() const;
    ProtectedAddresses protectedAddresses() const;
    TraceListing listingOf(sqlite3* database) const;
    Survey surveyOf(sqlite3* database, const ForgetRequest& request) const;
    Survey surveyOfSnapshot(const ForgetRequest& request) const;
    std::vector<KeptTrace> keptIn(sqlite3* database, const ForgetRequest& request) const;
    bool hasRemains(const SiteDatabase& database, const ForgetRequest& request) const;
    void remove(const SiteDatabase& database, const ForgetRequest& request) const;
    FileKeys keysOfFiles(sqlite3* database) const;
    std::vector<RowFile> goingFiles(const FileKeys& before, const FileKeys& after,
                                    const ForgetRequest& request) const;
    void removeColdJournal() const;

    TraceDatabase database_;
    std::shared_ptr<const FileManager> fileManager_;
};

}  // namespace browsersweep
