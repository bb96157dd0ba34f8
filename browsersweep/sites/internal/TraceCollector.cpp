#include "browsersweep/sites/internal/TraceCollector.h"

#include <algorithm>
#include <utility>

namespace browsersweep {

// Asked once for each row: many rows name few hosts, and the public suffix list is not small.
const Site* TraceCollector::siteOf(const std::string& host) {
    auto found = sites_.find(host);
    if (found == sites_.end()) {
        found = sites_.emplace(host, Site::ofHost(host)).first;
    }
    return found->second ? &*found->second : nullptr;
}

Trace& TraceCollector::traceOf(const Site& site, TraceKind kind) {
    return traces_.try_emplace({site, kind}, Trace{site, kind, {}, {}, {}}).first->second;
}

void TraceCollector::add(TraceKind kind, std::span<const std::string> hosts,
                         const CleanableDataSize& size, std::optional<Date> lastUsed) {
    std::set<Site> sites;  // two hosts may be of one site
    for (const std::string& host : hosts) {
        const Site* const site = siteOf(host);
        if (site == nullptr) {
            continue;
        }
        Trace& trace = traceOf(*site, kind);
        trace.hosts.insert(host);
        if (sites.insert(*site).second) {
            trace.size = trace.size + size;
            trace.lastUsed = std::max(trace.lastUsed, lastUsed);
        }
    }
    if (sites.size() > 1) {
        addShared(kind, sites, size);
    }
}

void TraceCollector::addShared(TraceKind kind, const std::set<Site>& sites,
                               const CleanableDataSize& size) {
    for (const Site& site : sites) {
        auto others = sites;
        others.erase(site);
        auto& part = traceOf(site, kind).shared[std::move(others)];
        part = part + size;
    }
}

std::vector<Trace> TraceCollector::traces() const {
    std::vector<Trace> result;
    result.reserve(traces_.size());
    for (const auto& entry : traces_) {
        result.push_back(entry.second);
    }
    return result;
}

}  // namespace browsersweep
