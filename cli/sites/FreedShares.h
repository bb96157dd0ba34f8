#pragma once

#include <cstdint>
#include <map>
#include <tuple>
#include <vector>

#include "browsersweep/hosting/sites/SweepStore.h"
#include "browsersweep/sites/Trace.h"

namespace browsersweep::cli {

/** A number in whole parts that are as large as their weights say and are the number together. */
std::vector<std::int64_t> sharesOf(std::int64_t number, const std::vector<std::int64_t>& weights);

/**
 * What of the disk's gain is owed to each site. Files shrink as a whole: each trace that went from
 * a store has a share of what the store gave back, as large as its part of the bytes that went, or
 * of the items where no bytes are known. What a store gave back though nothing went is nobody's.
 */
class FreedShares {
public:
    /** Adds what went from a store, and what the disk gained by it. */
    void add(const SweepStore& store, const TraceListing& gone, std::int64_t freedBytes);

    /** The share of what a site had of one kind in a profile. */
    std::int64_t of(const Site& site, Browser browser, const BrowserProfile* profile,
                    TraceKind kind) const;

    /** The shares of what no site can be told of, as it was added. */
    const std::vector<std::int64_t>& ofMixed() const noexcept { return mixed_; }

private:
    using Key = std::tuple<Site, Browser, const BrowserProfile*, TraceKind>;

    std::map<Key, std::int64_t> bySite_;
    std::vector<std::int64_t> mixed_;
};

}  // namespace browsersweep::cli
