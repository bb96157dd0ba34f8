#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/sites/Site.h"
#include "browsersweep/sites/TraceKind.h"

namespace browsersweep {

/** What one site left in one store. */
struct Trace {
    Site site;                            ///< whose it is
    TraceKind kind = TraceKind::history;  ///< what it is
    std::set<std::string> hosts;          ///< the site's hosts that it names
    CleanableDataSize size;               ///< rows, entries or files, and their bytes
    std::optional<Date> lastUsed;         ///< when the site was last used, as far as known
    /**
     * How much of it belongs to other sites too, as the storage of a site that is embedded in
     * another: by all the others that a part belongs to. Each of them has it in a trace of its own.
     */
    std::map<std::set<Site>, CleanableDataSize> shared{};

    /** Whether all fields are equal. */
    friend bool operator==(const Trace&, const Trace&) = default;
};

/** What lies in a store without the name of a site: it may be any site's. */
struct MixedTrace {
    TraceKind kind = TraceKind::history;  ///< what it is
    std::filesystem::path what;           ///< the file or folder
    CleanableDataSize size;               ///< what removing it would take
    /** What of a site may stand there and what removing it would cost, for people. */
    std::string meaning;
    /** Whether it goes with whatever is forgotten of this kind, and is made anew without asking. */
    bool goesAlong = false;

    /** Whether all fields are equal. */
    friend bool operator==(const MixedTrace&, const MixedTrace&) = default;
};

/** What a store holds. */
struct TraceListing {
    std::vector<Trace> bySite;          ///< one for each site and kind, in the order of the sites
    std::vector<MixedTrace> notBySite;  ///< what no site can be told of

    /** Whether all fields are equal. */
    friend bool operator==(const TraceListing&, const TraceListing&) = default;
};

}  // namespace browsersweep
