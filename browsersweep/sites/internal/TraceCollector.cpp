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
TraceCollector::KnownHost& TraceCollector::known(const std::string& host) {
    auto found = hosts_.find(host);
    if (found == hosts_.end()) {
        found = hosts_.emplace(host, KnownHost{Site::ofHost(host)}).first;
    }
    return found->second;
}

Trace& TraceCollector::traceOf(const Site& site, TraceKind kind) {
    return traces_.try_emplace({site, kind}, Trace{site, kind, {}, {}, {}}).first->second;
}

// Most hosts have traces of one kind in a store. A trace stays where it is until all are taken.
Trace& TraceCollector::traceOf(const std::string& host, KnownHost& known, TraceKind kind) {
    if (known.trace == nullptr || known.trace->kind != kind) {
        known.trace = &traceOf(*known.site, kind);
        known.trace->hosts.insert(host);
    }
    return *known.trace;
}

void TraceCollector::add(TraceKind kind, std::span<const std::string> hosts,
                         const CleanableDataSize& size, std::optional<Date> lastUsed) {
    const Site* first = nullptr;
    std::set<Site> sites;  // two hosts may be of one site, and mostly are
    const auto isNew = [&](const Site& site) {
        if (first == nullptr) {
            first = &site;
            return true;
        }
        if (sites.empty() && site == *first) {
            return false;
        }
        sites.insert(*first);
        return sites.insert(site).second;
    };
    for (const std::string& host : hosts) {
        KnownHost& found = known(host);
        if (!found.site) {
            continue;
        }
        Trace& trace = traceOf(host, found, kind);
        if (isNew(*found.site)) {
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
    hosts_.clear();
    std::vector<Trace> result;
    result.reserve(traces_.size());
    while (!traces_.empty()) {
        result.push_back(std::move(traces_.extract(traces_.begin()).mapped()));
    }
    return result;
}

}  // namespace browsersweep
