#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/sites/TraceStore.h"
#include "browsersweep/sites/internal/LevelDatabase.h"

namespace browsersweep {

class EntrySelector;

/** What a record of a database of LevelDB is. */
struct LevelRecord {
    /** Who needs it. */
    enum class Need {
        site,     ///< the sites that it names, or nobody knows who
        browser,  ///< the browser or an extension: it always stays
        others,   ///< the other records: without any of them it is worth nothing
    };

    Need need = Need::site;          ///< who needs it
    std::vector<std::string> hosts;  ///< whose it is
    bool isItem = true;              ///< whether it counts; one that only tells of others does not
    std::optional<Date> lastUsed;    ///< when the site was last used, where it tells that
};

/** Knows what the records of one database are. Made anew for each reading. */
class LevelSchema {
public:
    LevelSchema() = default;
    LevelSchema(const LevelSchema&) = delete;
    LevelSchema& operator=(const LevelSchema&) = delete;
    virtual ~LevelSchema();

    /** Whether a record cannot be told without others: then all are learnt first. */
    virtual bool learns() const noexcept { return false; }
    /** Is told of each record, before one is asked about. */
    virtual void learn(std::string_view key, std::string_view value);
    /** What a record is. */
    virtual LevelRecord recordOf(std::string_view key, std::string_view value) const = 0;
};

/** Files that belong to the records of a database, and lie beside it. Made anew for each use. */
class LevelCompanions {
public:
    LevelCompanions() = default;
    LevelCompanions(const LevelCompanions&) = delete;
    LevelCompanions& operator=(const LevelCompanions&) = delete;
    virtual ~LevelCompanions();

    /** What belongs to a record. */
    virtual CleanableDataSize sizeOf(std::string_view key, std::string_view value) = 0;
    /** Deletes what belongs to a record. */
    virtual void remove(std::string_view key, std::string_view value) = 0;
    /** Deletes everything, since no record stays. */
    virtual void removeAll() = 0;
};

/** One database of LevelDB that names sites. */
struct LevelRow {
    using MakeSchema = std::unique_ptr<LevelSchema> (*)(const KnownHosts&);
    using MakeCompanions = std::unique_ptr<LevelCompanions> (*)(
        const std::filesystem::path& database, const std::shared_ptr<const FileManager>&);

    std::string_view path;  ///< below the profile's folder
    TraceKind kind = TraceKind::siteStorage;
    MakeSchema schema = nullptr;
    MakeCompanions companions = nullptr;  ///< null where nothing lies beside it
    /** What the records are whose site nobody knows; empty where there are none. */
    std::string_view unknown;
};

/** A database of LevelDB as a store: what goes is left out of a new database. */
class LevelStore : public TraceStore {
public:
    LevelStore(const LevelRow& row, const std::filesystem::path& profile,
               std::shared_ptr<const FileManager> fileManager);

    std::filesystem::path path() const override { return database_.folder(); }
    std::set<TraceKind> kinds() const override { return {row_.kind}; }
    bool needsKnownHosts() const noexcept override { return !row_.unknown.empty(); }
    TraceListing list(const KnownHosts& knownHosts) const override;
    ForgetOutcome forget(const ForgetRequest& request) const override;

private:
    std::unique_ptr<LevelSchema> learntSchema(const KnownHosts& knownHosts) const;
    std::unique_ptr<LevelCompanions> companions() const;
    void removeCompanions(const LevelSchema& schema, EntrySelector& selector) const;
    void removeRecords(const LevelSchema& schema, EntrySelector& selector) const;
    void removeDatabase() const;

    LevelRow row_;
    std::shared_ptr<const FileManager> fileManager_;
    LevelDatabase database_;
};

}  // namespace browsersweep
