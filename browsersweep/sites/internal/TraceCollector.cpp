#include "browsersweep/sites/internal/TraceCollector.h"

#include <algorithm>
#include <set>

namespace browsersweep {

// Asked once for each row: many rows name few hosts, and the public suffix list is not small.
const Site* TraceCollector::siteOf(const std::string& host) {
    auto found = sites_.find(host);
    if (found == sites_.end()) {
        found = sites_.emplace(host, Site::ofHost(host)).first;
    }
    return found->second ? &*found->second : nullptr;
}

void TraceCollector::add(TraceKind kind, std::span<const std::string> hosts,
                         const CleanableDataSize& size, std::optional<Date> lastUsed) {
    std::set<const Trace*> counted;  // two hosts may be of one site
    for (const std::string& host : hosts) {
        const Site* const site = siteOf(host);
        if (site == nullptr) {
            continue;
        }
        const auto entry = traces_.try_emplace({*site, kind}, Trace{*site, kind, {}, {}, {}});
        Trace& trace = entry.first->second;
        trace.hosts.insert(host);
        if (counted.insert(&trace).second) {
            trace.size = trace.size + size;
            trace.lastUsed = std::max(trace.lastUsed, lastUsed);
        }
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
