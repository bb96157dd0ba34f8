#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "browsersweep/base/Date.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/sites/Trace.h"

namespace browsersweep {

/** Adds up what a store holds, site by site and kind by kind, while the store is read. */
class TraceCollector {
public:
    /**
     * Adds what belongs to these hosts, as `hostsIn` gives them. What belongs to two sites counts
     * for both, and is noted as shared; what belongs to none counts for nothing. Where hundreds of
     * sites share, which no page does, it is not noted with whom: their sizes are approximate then,
     * because a sum counts it more than once.
     */
    void add(TraceKind kind, std::span<const std::string> hosts, const CleanableDataSize& size,
             std::optional<Date> lastUsed = {});

    /** What was added, in the order of the sites and kinds. Afterwards there is nothing. */
    std::vector<Trace> takeTraces();

private:
    /** What is known of a host: its site, and the trace that it was noted in last. */
    struct KnownHost {
        std::optional<Site> site;
        Trace* trace = nullptr;
    };

    KnownHost& known(const std::string& host);
    Trace& traceOf(const Site& site, TraceKind kind);
    Trace& traceOf(const std::string& host, KnownHost& known, TraceKind kind);
    void addShared(TraceKind kind, const std::set<Site>& sites, const CleanableDataSize& size);

    std::map<std::pair<Site, TraceKind>, Trace> traces_;
    std::unordered_map<std::string, KnownHost> hosts_;
    std::size_t sharedNames_ = 0;
};

}  // namespace browsersweep
