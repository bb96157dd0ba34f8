#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <iterator>
#include <map>
#include <memory>
#include <utility>

#include "browsersweep/hosting/sites/ForgetSweep.h"
#include "browsersweep/hosting/sites/SiteInventory.h"
#include "browsersweep/hosting/sites/SweepStore.h"
#include "browsersweep/sites/ListingParts.h"
#include "browsersweep/traces/TraceStores.h"

#include "cli/ErrorText.h"
#include "cli/Order.h"
#include "cli/ProfileLabels.h"
#include "cli/SiteCommands.h"
#include "cli/Text.h"
#include "cli/sites/FreedShares.h"
#include "cli/sites/KeptKinds.h"
#include "cli/sites/SiteNames.h"

namespace browsersweep::cli {
namespace {

KindName nameOf(TraceKind kind) {
    return {rawValue(kind), displayName(kind)};
}

SiteOwner ownerOf(Browser browser, const BrowserProfile* profile) {
    if (profile == nullptr) {
        return {browser, {}, {}};
    }
    return {browser, profile->name(), profile->folder()};
}

SiteOwner ownerOf(const SweepStore& store) {
    return ownerOf(store.browser, store.profile.get());
}

std::optional<std::string> orNothing(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/** The stores of the selected browsers and profiles, and what could not be looked at. */
struct SelectedStores {
    std::vector<SweepStore> stores;
    std::vector<SiteErrorRow> errors;
    std::map<Browser, ProfileLabels> labels;
};

/** Marks in rows whose profile another one of the browser has the name of. */
template <typename Rows>
void tellApart(const std::map<Browser, ProfileLabels>& labels, Rows& rows) {
    for (auto& row : rows) {
        const auto found = labels.find(row.owner.browser);
        row.owner.isNameShared =
            found != labels.end() && row.owner.profile && found->second.isShared(row.owner.profile);
    }
}

void addStores(Browser browser, const Options& options, const SiteWork& work,
               SelectedStores& selected) {
    auto& labels = selected.labels[browser];
    const auto isSelected = [&](const BrowserProfile& profile) {
        labels.add(profile);
        const bool isChosen = options.selection.includes(profile);
        const auto reason = isChosen ? profile.leftOutReason() : std::nullopt;
        if (reason) {
            selected.errors.push_back(
                {ownerOf(browser, &profile), profile.folder(), "left out, " + *reason});
        }
        return isChosen;
    };
    try {
        const auto found = sweepStores(browser, *work.cleanerOf(browser), isSelected, work.home);
        selected.stores.insert(selected.stores.end(), found.begin(), found.end());
    } catch (const OperationCancelled&) {
        selected.errors.push_back({{browser, {}, {}}, {}, std::string(stoppedText)});
    } catch (const std::exception& error) {
        selected.errors.push_back({{browser, {}, {}}, {}, errorText(error)});
    }
}

SelectedStores selectedStores(const Options& options, const SiteWork& work) {
    SelectedStores selected;
    for (const Browser browser : options.selection.selectedBrowsers()) {
        addStores(browser, options, work, selected);
    }
    return selected;
}

std::set<TraceKind> kindsOf(const SiteOptions& options) {
    std::set<TraceKind> kinds;
    for (const auto& name : options.kinds) {
        kinds.insert(traceKindFromRawValue(name).value());
    }
    return kinds;
}

/** Shows which browser it is the turn of, and stops where the user wants it. */
StoreProgress progressOf(Observer& observer) {
    return [&observer](const SweepStore& next, std::size_t done, std::size_t all) {
        observer.begin(next.browser, done, all);
        return !observer.isInterrupted();
    };
}

bool isOfKinds(const std::set<TraceKind>& kinds, TraceKind kind) {
    return kinds.empty() || kinds.contains(kind);
}

TraceListing partOfKinds(TraceListing listing, const std::set<TraceKind>& kinds) {
    std::erase_if(listing.bySite,
                  [&kinds](const Trace& each) { return !isOfKinds(kinds, each.kind); });
    std::erase_if(listing.notBySite,
                  [&kinds](const MixedTrace& each) { return !isOfKinds(kinds, each.kind); });
    return listing;
}

SiteRow rowOf(const SiteSummary& summary, const FreedShares& shares) {
    SiteRow row{summary.site.name(), summary.size, summary.lastUsed, {}, 0};
    for (const ProfileTrace& each : summary.traces) {
        const Trace& trace = each.trace;
        const auto freed = shares.of(trace.site, each.browser, each.profile.get(), trace.kind);
        row.freedBytes += freed;
        row.traces.push_back({ownerOf(each.browser, each.profile.get()),
                              nameOf(trace.kind),
                              {trace.hosts.begin(), trace.hosts.end()},
                              trace.size,
                              trace.lastUsed,
                              freed});
    }
    return row;
}

std::vector<SiteRow> rowsOf(const std::vector<SweepStore>& stores,
                            std::vector<TraceListing> listings, const FreedShares& shares = {}) {
    auto summaries = summarize(stores, std::move(listings));
    std::vector<SiteRow> rows;
    rows.reserve(summaries.size());
    for (SiteSummary& summary : summaries) {
        rows.push_back(rowOf(summary, shares));
        summary.traces = {};
    }
    return rows;
}

void addMixed(const SweepStore& store, const TraceListing& listing, std::vector<MixedRow>& rows) {
    for (const MixedTrace& each : listing.notBySite) {
        rows.push_back({ownerOf(store), nameOf(each.kind), each.what.string(), each.size,
                        printable(each.meaning), 0});
    }
}

bool isLarger(const SiteRow& one, const SiteRow& other) {
    return one.size.byteCount.value > other.size.byteCount.value;
}
bool isLater(const SiteRow& one, const SiteRow& other) {
    return one.lastUsed > other.lastUsed;
}
bool isByName(const SiteRow& one, const SiteRow& other) {
    return one.site < other.site;
}

bool hasMoreItems(const SiteRow& one, const SiteRow& other) {
    return one.size.itemCount.value > other.size.itemCount.value;
}

void sort(std::vector<SiteRow>& rows, Order order) {
    constexpr std::array comparisons{&isLarger, &isByName, &hasMoreItems, &isLater};
    std::stable_sort(rows.begin(), rows.end(), comparisons.at(static_cast<std::size_t>(order)));
}

/** What is to be said of a store that was not seen whole; nothing of one that was. */
std::optional<SiteErrorRow> errorOf(const SweepStore& store, const StoreListing& listing) {
    if (isSuccess(listing.verdict) || !listing.isConcerned) {
        return std::nullopt;
    }
    std::string text = printable(listing.detail);
    if (listing.verdict == ItemVerdict::cancelled) {
        text = listing.error ? stoppedText : interruptedText;
    } else if (listing.verdict == ItemVerdict::leftOut) {
        text.insert(0, std::string(displayName(listing.verdict)) + ": ");
    }
    return SiteErrorRow{ownerOf(store), listing.what.string(), std::move(text)};
}

ForgetRequest requestOf(const SiteOptions& options) {
    ForgetRequest request;
    auto kept = sitesNamed(options.alwaysKept);
    kept.merge(sitesNamed(options.kept));
    request.sites = !options.all   ? SiteSelection::only(sitesNamed(options.names))
                    : kept.empty() ? SiteSelection::everything()
                                   : SiteSelection::allBut(kept);
    request.kinds = kindsOf(options);
    request.keptKinds = kindsOfCategories(options.keptCategories);
    request.takesMixed = options.takesMixed;
    request.takesSettings = options.takesSettings;
    // What stands as a hash is found by trying: the names most sites go by need not be listed.
    for (const Site& site : request.sites.sites()) {
        request.knownHosts.insert({site.name(), "www." + site.name()});
    }
    return request;
}

std::vector<std::string> remarksOn(const SiteOptions& options, const std::set<Site>& found,
                                   bool isAllSeen) {
    std::vector<std::string> remarks;
    for (const auto* const texts : {&options.names, &options.kept}) {
        for (const auto& text : *texts) {
            if (auto remark = remarkOn(text); !remark.empty()) {
                remarks.push_back(std::move(remark));
            }
        }
        for (const Site& site : sitesNamed(*texts)) {
            if (!found.contains(site)) {
                remarks.push_back(remarkOnMissing(site, found, isAllSeen));
            }
        }
    }
    return remarks;
}

StoreRow rowOf(const SweepStore& store, const StoreForgetting& result) {
    StoreRow row;
    row.owner = ownerOf(store);
    row.what = result.what.string();
    row.verdict = result.verdict;
    row.detail = orNothing(printable(result.detail));
    row.freedBytes = result.freedBytes;
    row.isWithoutRemains = result.isWithoutRemains;
    if (result.gone) {
        row.removed = totalSize(*result.gone);
    }
    return row;
}

void addKept(const SweepStore& store, const StoreForgetting& result, std::vector<KeptRow>& rows) {
    for (const KeptTrace& each : result.kept) {
        rows.push_back(
            {ownerOf(store), nameOf(each.kind), each.what.string(), printable(each.why)});
    }
}

/** Which options would remove what stays. */
std::vector<std::string> hintsFor(const SiteOptions& options, const std::vector<KeptRow>& kept) {
    const auto isSetting = [](const KeptRow& row) {
        return row.kind == nameOf(TraceKind::settings);
    };
    std::vector<std::string> hints;
    if (!options.all && !options.takesMixed && !std::all_of(kept.begin(), kept.end(), isSetting)) {
        hints.emplace_back(
            "--mixed also removes what is not stored by site; all other sites lose it too.");
    }
    if (std::any_of(kept.begin(), kept.end(), isSetting)) {
        hints.emplace_back("--settings also removes what you decided about the sites.");
    }
    return hints;
}

/** Whether every store of every browser could be looked at. */
bool isAllSeen(const ForgetReport& report) noexcept {
    return report.errors.empty() &&
           std::all_of(report.stores.begin(), report.stores.end(),
                       [](const StoreRow& row) { return isSuccess(row.verdict); });
}

bool isNothing(const ForgetReport& report) noexcept {
    return report.forgotten.empty() && report.notBySite.empty();
}

ForgetReport reportOf(const std::vector<SweepStore>& stores, const ForgetResult& result) {
    ForgetReport report;
    FreedShares shares;
    std::vector<TraceListing> gone;
    for (std::size_t i = 0; i < stores.size(); ++i) {
        const StoreForgetting& store = result.stores[i];
        gone.push_back(store.gone.value_or(TraceListing()));
        if (!store.isConcerned) {
            continue;
        }
        shares.add(stores[i], gone.back(), store.freedBytes);
        report.stores.push_back(rowOf(stores[i], store));
        report.freedBytes += store.freedBytes;
        report.total = report.total + totalSize(gone.back());
        addMixed(stores[i], gone.back(), report.notBySite);
        addKept(stores[i], store, report.kept);
    }
    report.forgotten = rowsOf(stores, std::move(gone), shares);
    sort(report.forgotten, Order::size);
    for (std::size_t i = 0; i < report.notBySite.size(); ++i) {
        report.notBySite[i].freedBytes = shares.ofMixed()[i];
    }
    return report;
}

enum class Work { plan, deletion };

ForgetReport work(Work kind, const Options& options, const SiteWork& work, Observer& observer) {
    auto selected = selectedStores(options, work);
    ForgetOptions how{requestOf(options.sites), observer.control(), {}};
    if (!options.force) {
        how.refusal = work.refusal;
    }
    ForgetSweep sweep(selected.stores, std::move(how), progressOf(observer));
    const auto result = kind == Work::plan ? sweep.plan() : sweep.forget();
    auto report = reportOf(selected.stores, result);
    report.isPlan = kind == Work::plan;
    report.isDryRun = options.dryRun;
    report.keep = options.keep;
    report.errors = std::move(selected.errors);
    tellApart(selected.labels, report.errors);
    tellApart(selected.labels, report.notBySite);
    tellApart(selected.labels, report.kept);
    tellApart(selected.labels, report.stores);
    for (auto& site : report.forgotten) {
        tellApart(selected.labels, site.traces);
    }
    const bool isExact = isAllSeen(report);
    report.total.itemCount.isApproximate |= !isExact;
    report.total.byteCount.isApproximate |= !isExact;
    report.remarks = remarksOn(options.sites, result.foundSites, isExact);
    report.hints = hintsFor(options.sites, report.kept);
    report.isPointless = !options.sites.all && isNothing(report) && !result.wasStopped;
    return report;
}

}  // namespace

std::vector<std::shared_ptr<const BrowserProfile>> profilesOfSites(Browser browser,
                                                                   const Home& home) {
    return profilesBeside(browser, home);
}

SiteListReport gatherSites(const Options& options, const SiteWork& work, Observer& observer) {
    auto selected = selectedStores(options, work);
    const auto kinds = kindsOf(options.sites);
    auto inventory =
        SiteInventory(selected.stores, {kinds, {}, observer.control()}, progressOf(observer))
            .list();
    inventory.knownHosts = {};
    SiteListReport report;
    report.errors = std::move(selected.errors);
    std::vector<TraceListing> listings;
    for (std::size_t i = 0; i < selected.stores.size(); ++i) {
        listings.push_back(partOfKinds(std::move(inventory.listings[i].listing), kinds));
        addMixed(selected.stores[i], listings.back(), report.notBySite);
        if (auto error = errorOf(selected.stores[i], inventory.listings[i])) {
            report.errors.push_back(std::move(*error));
        }
    }
    report.sites = rowsOf(selected.stores, std::move(listings));
    tellApart(selected.labels, report.errors);
    tellApart(selected.labels, report.notBySite);
    for (auto& site : report.sites) {
        tellApart(selected.labels, site.traces);
    }
    if (options.sites.olderThan) {
        const Date latest =
            ReferenceClock::now() - ReferenceClock::duration(*options.sites.olderThan);
        std::erase_if(report.sites, [latest](const SiteRow& row) {
            return !row.lastUsed || *row.lastUsed > latest;
        });
    }
    sort(report.sites, options.view.order);
    return report;
}

ForgetReport gatherForget(const Options& options, const SiteWork& where, Observer& observer) {
    return work(options.dryRun ? Work::plan : Work::deletion, options, where, observer);
}

ForgetReport previewForget(const Options& options, const SiteWork& where, Observer& observer) {
    return work(Work::plan, options, where, observer);
}

}  // namespace browsersweep::cli
