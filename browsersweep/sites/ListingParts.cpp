#include "browsersweep/sites/ListingParts.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace browsersweep {
namespace {

using Size = CleanableDataSize;
using Measurement = CleanableDataSize::Measurement;

bool isNothing(const Size& size) noexcept {
    return size.itemCount.value <= 0 && size.byteCount.value <= 0;
}

std::vector<Site> allOf(const Site& site, const std::set<Site>& others) {
    std::vector<Site> all(others.begin(), others.end());
    all.push_back(site);
    return all;
}

Size sharedSize(const Trace& trace) {
    Size sum;
    for (const auto& [others, size] : trace.shared) {
        sum = sum + size;
    }
    return sum;
}

/** The part of a trace that is selected: its own, and what it shares with certain sites. */
std::optional<Trace> selectedPart(const Trace& trace, const SiteSelection& selection) {
    const Size own = trace.size - sharedSize(trace);
    const bool takesOwn =
        selection.selects(trace.site) && (trace.shared.empty() || !isNothing(own));
    Trace part = trace;
    part.size = takesOwn ? own : Size::zero;
    part.shared.clear();
    for (const auto& [others, size] : trace.shared) {
        if (selection.selects(allOf(trace.site, others))) {
            part.size = part.size + size;
            part.shared.emplace(others, size);
        }
    }
    return takesOwn || !part.shared.empty() ? std::optional(std::move(part)) : std::nullopt;
}

Measurement gone(const Measurement& before, const Measurement& after) noexcept {
    auto difference = before - after;
    difference.value = std::max<std::int64_t>(difference.value, 0);
    return difference;
}

/** The difference, and nothing where a browser has added to it meanwhile. */
Size gone(const Size& before, const Size& after) noexcept {
    return {gone(before.itemCount, after.itemCount), gone(before.byteCount, after.byteCount)};
}

Trace gone(const Trace& before, const Trace& after) {
    Trace difference = before;
    difference.size = gone(before.size, after.size);
    difference.shared.clear();
    for (const auto& [others, size] : before.shared) {
        const auto found = after.shared.find(others);
        const Size part = found == after.shared.end() ? size : gone(size, found->second);
        if (!isNothing(part)) {
            difference.shared.emplace(others, part);
        }
    }
    return difference;
}

/** Traces are in the order of their sites and kinds. */
bool precedes(const Trace& one, const Trace& other) noexcept {
    const int order = one.site.name().compare(other.site.name());
    return order != 0 ? order < 0 : one.kind < other.kind;
}

void addGone(const Trace& before, const std::vector<Trace>& after, std::vector<Trace>& result) {
    const auto found = std::lower_bound(after.begin(), after.end(), before, precedes);
    const bool isStillThere = found != after.end() && !precedes(before, *found);
    auto difference = isStillThere ? gone(before, *found) : before;
    if (!isNothing(difference.size)) {
        result.push_back(std::move(difference));
    }
}

void addGone(const MixedTrace& before, const std::vector<MixedTrace>& after,
             std::vector<MixedTrace>& result) {
    const auto found = std::find_if(after.begin(), after.end(), [&before](const MixedTrace& each) {
        return each.kind == before.kind && each.what == before.what;
    });
    auto difference = before;
    if (found != after.end()) {
        difference.size = gone(before.size, found->size);
    }
    if (found == after.end() || !isNothing(difference.size)) {
        result.push_back(std::move(difference));
    }
}

}  // namespace

TraceListing selectedPart(const TraceListing& listing, const ForgetRequest& request) {
    TraceListing part;
    for (const Trace& trace : listing.bySite) {
        auto selected =
            request.takes(trace.kind) ? selectedPart(trace, request.sites) : std::nullopt;
        if (selected) {
            part.bySite.push_back(std::move(*selected));
        }
    }
    std::copy_if(listing.notBySite.begin(), listing.notBySite.end(),
                 std::back_inserter(part.notBySite), [&request](const MixedTrace& each) {
                     return each.goesAlong ? request.takes(each.kind)
                                           : request.takesMixedOf(each.kind);
                 });
    return part;
}

TraceListing goneBetween(const TraceListing& before, const TraceListing& after) {
    TraceListing result;
    auto sorted = after.bySite;
    std::sort(sorted.begin(), sorted.end(), precedes);
    for (const Trace& trace : before.bySite) {
        addGone(trace, sorted, result.bySite);
    }
    for (const MixedTrace& trace : before.notBySite) {
        addGone(trace, after.notBySite, result.notBySite);
    }
    return result;
}

Size totalSize(const TraceListing& listing) {
    Size total;
    for (const Trace& trace : listing.bySite) {
        total = total + trace.size;
        for (const auto& [others, size] : trace.shared) {
            // The first of the sites counts what belongs to all of them.
            total = others.begin()->name() < trace.site.name() ? total - size : total;
        }
    }
    for (const MixedTrace& trace : listing.notBySite) {
        total = total + trace.size;
    }
    return total;
}

void merge(Trace& trace, const Trace& other) {
    trace.hosts.insert(other.hosts.begin(), other.hosts.end());
    trace.size = trace.size + other.size;
    trace.lastUsed = std::max(trace.lastUsed, other.lastUsed);
    for (const auto& [others, size] : other.shared) {
        auto& part = trace.shared[others];
        part = part + size;
    }
}

}  // namespace browsersweep
