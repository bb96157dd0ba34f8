#include "cli/sites/FreedShares.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace browsersweep::cli {
namespace {

using Weights = std::vector<std::int64_t>;
using Figure = CleanableDataSize::Measurement CleanableDataSize::*;

Weights weightsOf(const TraceListing& gone, Figure by) {
    Weights weights;
    for (const Trace& each : gone.bySite) {
        weights.push_back(std::max<std::int64_t>((each.size.*by).value, 0));
    }
    for (const MixedTrace& each : gone.notBySite) {
        weights.push_back(std::max<std::int64_t>((each.size.*by).value, 0));
    }
    return weights;
}

bool isNothing(const Weights& weights) noexcept {
    return std::all_of(weights.begin(), weights.end(),
                       [](std::int64_t weight) { return weight == 0; });
}

}  // namespace

std::vector<std::int64_t> sharesOf(std::int64_t number, const Weights& weights) {
    const auto all = std::accumulate(weights.begin(), weights.end(), std::int64_t{0});
    Weights shares;
    std::int64_t given = 0;
    std::int64_t weight = 0;
    for (const auto each : weights) {
        weight += each;
        const auto part = static_cast<long double>(weight) / static_cast<long double>(all);
        const auto due =
            all == 0 ? 0 : static_cast<std::int64_t>(static_cast<long double>(number) * part);
        shares.push_back(due - given);
        given = due;
    }
    return shares;
}

void FreedShares::add(const SweepStore& store, const TraceListing& gone, std::int64_t freedBytes) {
    auto weights = weightsOf(gone, &CleanableDataSize::byteCount);
    if (isNothing(weights)) {
        weights = weightsOf(gone, &CleanableDataSize::itemCount);
    }
    const auto shares = sharesOf(freedBytes, weights);
    for (std::size_t i = 0; i < gone.bySite.size(); ++i) {
        const Trace& trace = gone.bySite[i];
        bySite_[{trace.site, store.browser, store.profile.get(), trace.kind}] += shares[i];
    }
    mixed_.insert(mixed_.end(), shares.begin() + static_cast<std::ptrdiff_t>(gone.bySite.size()),
                  shares.end());
}

std::int64_t FreedShares::of(const Site& site, Browser browser, const BrowserProfile* profile,
                             TraceKind kind) const {
    const auto found = bySite_.find({site, browser, profile, kind});
    return found == bySite_.end() ? 0 : found->second;
}

}  // namespace browsersweep::cli
