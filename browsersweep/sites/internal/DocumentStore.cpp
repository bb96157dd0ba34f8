#include "browsersweep/sites/internal/DocumentStore.h"

#include <algorithm>
#include <utility>

#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

/** A value that holds entries, and the last key that led to it. */
struct Holder {
    std::string key;
    JsonEditor::Value value;
};

void findHolders(const JsonEditor& document, const Holder& from, std::string_view place,
                 std::vector<Holder>& found) {
    if (place.empty()) {
        found.push_back(from);
        return;
    }
    const std::string_view key = place.substr(0, place.find('/'));
    place.remove_prefix(std::min(key.size() + 1, place.size()));
    const bool isAny = key == "*";
    for (const JsonEditor::Member& member :
         isAny ? document.members(from.value) : document.members(from.value, key)) {
        findHolders(document, {member.key, member.value}, place, found);
    }
}

std::vector<Holder> holdersOf(const JsonEditor& document, const DocumentRow& row) {
    std::vector<Holder> found;
    findHolders(document, {{}, document.root()}, row.place, found);
    return found;
}

void removeEntries(JsonEditor& document, const DocumentRow& row, const HostDigests& digests,
                   const ForgetRequest& request, EntrySelector& selector) {
    for (const Holder& holder : holdersOf(document, row)) {
        if (!request.takes(row.kindOf(holder.key))) {
            continue;
        }
        const auto members = document.members(holder.value);
        std::vector<bool> isRemoved;
        isRemoved.reserve(members.size());
        for (const JsonEditor::Member& member : members) {
            const DocumentEntry entry = row.entryOf(document, member, digests);
            isRemoved.push_back(!entry.alwaysStays && selector.selects(entry.hosts));
        }
        document.remove(members, isRemoved);
    }
}

}  // namespace

DocumentStore::DocumentStore(DocumentForm form, const std::filesystem::path& profile,
                             std::shared_ptr<const FileManager> fileManager)
    : form_(std::move(form)), path_(profile / form_.path), fileManager_(std::move(fileManager)) {}

HostDigests DocumentStore::digestsOf(const KnownHosts& knownHosts) const {
    return form_.digestOf == nullptr ? HostDigests() : HostDigests(knownHosts, form_.digestOf);
}

TraceListing DocumentStore::list(const KnownHosts& knownHosts) const {
    const auto contents = contentsIfThere(*fileManager_, path_);
    if (!contents) {
        return {};
    }
    const JsonEditor document(*contents);
    const HostDigests digests = digestsOf(knownHosts);
    TraceCollector collector;
    CleanableDataSize unknown;
    for (const DocumentRow& row : form_.rows) {
        for (const Holder& holder : holdersOf(document, row)) {
            for (const JsonEditor::Member& member : document.members(holder.value)) {
                const DocumentEntry entry = row.entryOf(document, member, digests);
                const CleanableDataSize size{1, member.end - member.begin};
                if (!entry.alwaysStays) {
                    collector.add(row.kindOf(holder.key), entry.hosts, size, entry.lastUsed);
                }
                if (!entry.alwaysStays && entry.hosts.empty()) {
                    unknown = unknown + size;
                }
            }
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (!form_.unknown.empty() && unknown.itemCount.value > 0) {
        listing.notBySite.push_back(
            {*form_.kinds.begin(), path_, unknown, std::string(form_.unknown)});
    }
    return listing;
}

ForgetOutcome DocumentStore::forget(const ForgetRequest& request) const {
    const bool isAnyTaken = std::any_of(form_.kinds.begin(), form_.kinds.end(),
                                        [&](TraceKind kind) { return request.takes(kind); });
    if (!isAnyTaken) {
        return {};
    }
    removeLeftBeside(*fileManager_, path_);
    if (form_.goesWhole && request.sites.isEverything()) {
        removeAll(*fileManager_, path_);
        return {};
    }
    const auto contents = contentsIfThere(*fileManager_, path_);
    if (!contents) {
        return {};
    }
    JsonEditor document(*contents);
    EntrySelector selector(request, !form_.unknown.empty());
    const HostDigests digests = digestsOf(request.knownHosts);
    for (const DocumentRow& row : form_.rows) {
        removeEntries(document, row, digests, request, selector);
    }
    if (document.isChanged()) {
        const std::string edited = document.edited();
        fileManager_->replace(path_, Bytes(edited.begin(), edited.end()));
    }
    ForgetOutcome outcome;
    if (selector.hasKeptUnknown()) {
        outcome.kept.push_back({*form_.kinds.begin(), path_, std::string(form_.unknown)});
    }
    return outcome;
}

}  // namespace browsersweep
