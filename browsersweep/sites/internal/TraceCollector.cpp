#include "browsersweep/sites/internal/TraceCollector.h"

#include <algorithm>
#include <utility>

namespace browsersweep {
namespace {

/** No page has so many others in it; each of them would be noted with all the rest. */
constexpr std::size_t mostSharing = 256;
constexpr std::size_t mostSharedNames = std::size_t{1} << 20;

}  // namespace

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
    sharedNames_ += std::min(sites.size() * sites.size(), mostSharedNames);
    const bool isNoted = sites.size() <= mostSharing && sharedNames_ <= mostSharedNames;
    for (const Site& site : sites) {
        Trace& trace = traceOf(site, kind);
        if (!isNoted) {
            trace.size = trace.size.approximate();
            continue;
        }
        auto others = sites;
        others.erase(site);
        auto& part = trace.shared[std::move(others)];
        part = part + size;
    }
}

// One by one: there may be a million, which need not be there twice.
std::vector<Trace> TraceCollector::takeTraces() {
    sites_.clear();
    std::vector<Trace> result;
    result.reserve(traces_.size());
    while (!traces_.empty()) {
        result.push_back(std::move(traces_.extract(traces_.begin()).mapped()));
    }
    return result;
}

}  // namespace browsersweep
