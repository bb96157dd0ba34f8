#include "browsersweep/sites/internal/TraceCollector.h"

#include <algorithm>
#include <utility>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep {
namespace {

constexpr std::size_t mostSharedNames = std::size_t{1} << 20;

void requireFewNames(std::size_t count) {
    if (count > mostSharedNames) {
        throw DecodingError::dataCorrupted("too many sites share what is stored");
    }
}

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
        requireFewNames(sites.size() * sites.size());
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
        const auto [part, isNew] = traceOf(site, kind).shared.try_emplace(std::move(others));
        part->second = part->second + size;
        sharedNames_ += isNew ? part->first.size() : 0;
        requireFewNames(sharedNames_);
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
