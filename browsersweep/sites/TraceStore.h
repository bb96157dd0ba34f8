#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/sites/SiteSelection.h"
#include "browsersweep/sites/Trace.h"
#include "browsersweep/sites/TraceKind.h"

namespace browsersweep {

/** Hosts that are known from elsewhere: what stores only as a hash can be told by trying them. */
using KnownHosts = std::set<std::string>;

/** What is to be forgotten. */
struct ForgetRequest {
    SiteSelection sites = SiteSelection::only({});  ///< whose traces
    std::set<TraceKind> kinds;                      ///< only of these kinds; empty: of all
    /**
     * What tells no site apart goes too, although only some sites are meant: other sites lose what
     * they have there. With everything and with "all but" it goes always.
     */
    bool takesMixed = false;
    /** What the user decided for sites goes too; also where the kind `settings` is asked for. */
    bool takesSettings = false;
    KnownHosts knownHosts;            ///< of all sites, also of those that are kept
    std::set<TraceKind> keptKinds{};  ///< never of these, whatever the rest says

    /** Whether traces of this kind are meant. */
    BROWSERSWEEP_EXPORT bool takes(TraceKind kind) const noexcept;
    /** Whether what tells no site apart, of this kind, is meant. */
    BROWSERSWEEP_EXPORT bool takesMixedOf(TraceKind kind) const noexcept;
};

/** What was meant, or names a site that was meant, and is still there on purpose. */
struct KeptTrace {
    TraceKind kind = TraceKind::history;  ///< what it is
    std::filesystem::path what;           ///< the file or folder
    std::string why;                      ///< what stays, why, and what would remove it, for people

    /** Whether all fields are equal. */
    friend bool operator==(const KeptTrace&, const KeptTrace&) = default;
};

/** What forgetting came to. What is gone is known by listing again. */
struct ForgetOutcome {
    std::vector<KeptTrace> kept;  ///< what stays on purpose
    /**
     * Whether no byte of what went stays in the files. False where the disk had no room to write a
     * file anew: what went was overwritten in place, and remains of index pages may stay.
     */
    bool isWithoutRemains = true;

    /** Whether all fields are equal. */
    friend bool operator==(const ForgetOutcome&, const ForgetOutcome&) = default;
};

/**
 * One place where a browser's profile keeps traces of sites: a database, a folder, a document with
 * all that belongs to it. Knows no state, but where `remembering` gives one that does: each call
 * looks at the files afresh, through the file manager that it was made with, whose control is asked
 * between steps.
 *
 * Listing changes nothing below the home and leaves nothing in the temporary folder. Forgetting
 * leaves each file old or new, whenever it is interrupted, and the next call does the rest.
 */
class BROWSERSWEEP_EXPORT TraceStore {
public:
    TraceStore() = default;
    TraceStore(const TraceStore&) = delete;
    TraceStore& operator=(const TraceStore&) = delete;
    virtual ~TraceStore();

    /** What it is about: the file or folder by which people know it. */
    virtual std::filesystem::path path() const = 0;

    /**
     * All files and folders that it may shrink or delete, a database's companions left out: for
     * what the disk gains, and for a look at whether they may be changed. They need not exist.
     */
    virtual std::vector<std::filesystem::path> places() const;

    /** The kinds of traces that it may hold. */
    virtual std::set<TraceKind> kinds() const = 0;

    /** Whether it tells less without hosts that are known from other stores. */
    virtual bool needsKnownHosts() const noexcept;

    /**
     * What it holds. A store that does not exist holds nothing. Throws what reading throws:
     * `filesystem_error`, `SQLiteError`, `DecodingError`, `OperationCancelled`.
     */
    virtual TraceListing list(const KnownHosts& knownHosts) const = 0;

    /**
     * Removes what is asked for, and nothing else. The browser must not run. Throws as above; what
     * was removed by then stays removed.
     */
    virtual ForgetOutcome forget(const ForgetRequest& request) const = 0;

    /**
     * The same place for one operation that lists it, forgets and lists it again: what was read of
     * a file is not read again for as long as the system says that the file is unchanged. Null
     * where there would be no difference. Not for several threads at once.
     */
    virtual std::shared_ptr<const TraceStore> remembering() const;
};

}  // namespace browsersweep
