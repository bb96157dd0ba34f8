#include "browsersweep/traces/safari/internal/PropertyListStore.h"

#include <algorithm>
#include <utility>

#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/traces/safari/internal/ValueSize.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

/** An entry, and its key where it has one. */
struct Entry {
    std::string_view key;
    const PropertyList& value;
};

template <typename Visit>
void forEachEntry(const PropertyList& holder, Visit visit) {
    if (const auto* const values = holder.asArray()) {
        for (const PropertyList& value : *values) {
            visit(Entry{{}, value});
        }
    } else if (const auto* const members = holder.asDictionary()) {
        for (const PropertyList::Entry& member : *members) {
            visit(Entry{member.key, member.value});
        }
    }
}

const PropertyList* holderOf(const PropertyListRow& row, const PropertyList& root) noexcept {
    return row.key.empty() ? &root : root.find(row.key);
}

Hosts hostsOf(const PropertyListRow& row, const Entry& entry) {
    return row.keys ? hostsIn(*row.keys, entry.key) : hostsInValue(entry.value);
}

std::optional<Date> dateOf(const PropertyListRow& row, const PropertyList& entry) {
    const PropertyList* const date = row.date.empty() ? nullptr : entry.find(row.date);
    return date == nullptr ? std::nullopt : date->asDate();
}

// A key that names no site is the browser's own, and stays even when everything goes.
PropertyList withoutEntriesOf(const PropertyListRow& row, const PropertyList& holder,
                              const PropertyListStore::IsOwn& isOwn, SiteMatcher& matcher) {
    const auto isGoing = [&](const Entry& entry) {
        const Hosts hosts = hostsOf(row, entry);
        const bool isBrowsersOwn = row.keys && hosts.empty();
        return !isBrowsersOwn && isOwn(entry.value) && matcher.selectsHosts(hosts);
    };
    if (const auto* const values = holder.asArray()) {
        PropertyList::Array left(*values);
        std::erase_if(left, [&](const PropertyList& value) { return isGoing({{}, value}); });
        return left.size() == values->size() ? holder : PropertyList::array(std::move(left));
    }
    if (const auto* const members = holder.asDictionary()) {
        PropertyList::Dictionary left(*members);
        std::erase_if(left, [&](const PropertyList::Entry& member) {
            return isGoing({member.key, member.value});
        });
        return left.size() == members->size() ? holder : PropertyList::dictionary(std::move(left));
    }
    return holder;
}

}  // namespace

PropertyListStore::PropertyListStore(const PropertyListForm& form,
                                     const std::filesystem::path& folder,
                                     std::shared_ptr<const FileManager> fileManager,
                                     OwnersOf owners)
    : form_(form),
      path_(folder / form.path),
      fileManager_(std::move(fileManager)),
      owners_(std::move(owners)) {}

PropertyListStore::IsOwn PropertyListStore::owners() const {
    return owners_ ? owners_() : [](const PropertyList& /*entry*/) { return true; };
}

std::set<TraceKind> PropertyListStore::kinds() const {
    std::set<TraceKind> kinds;
    for (const PropertyListRow& row : form_.rows) {
        kinds.insert(row.kind);
    }
    return kinds;
}

TraceListing PropertyListStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    const IsOwn isOwn = owners();
    const auto contents = contentsIfThere(*fileManager_, path_);
    const auto root = contents ? std::optional(PropertyList::parse(*contents)) : std::nullopt;
    for (const PropertyListRow& row : root ? form_.rows : std::span<const PropertyListRow>()) {
        const PropertyList* const holder = holderOf(row, *root);
        if (holder == nullptr) {
            continue;
        }
        forEachEntry(*holder, [&](const Entry& entry) {
            if (isOwn(entry.value)) {
                collector.add(row.kind, hostsOf(row, entry), {1, {roughSize(entry.value), true}},
                              dateOf(row, entry.value));
            }
        });
    }
    return {collector.takeTraces(), {}};
}

PropertyList PropertyListStore::withoutEntries(const PropertyList& root,
                                               const ForgetRequest& request) const {
    const IsOwn isOwn = owners();
    SiteMatcher matcher(request.sites);
    PropertyList left = root;
    for (const PropertyListRow& row : form_.rows) {
        if (!request.takes(row.kind)) {
            continue;
        }
        if (row.key.empty()) {
            left = withoutEntriesOf(row, left, isOwn, matcher);
            continue;
        }
        const auto* const members = left.asDictionary();
        PropertyList::Dictionary changed = members ? *members : PropertyList::Dictionary();
        for (PropertyList::Entry& member : changed) {
            if (member.key == row.key) {
                member.value = withoutEntriesOf(row, member.value, isOwn, matcher);
            }
        }
        left = members ? PropertyList::dictionary(std::move(changed)) : left;
    }
    return left;
}

ForgetOutcome PropertyListStore::forget(const ForgetRequest& request) const {
    const auto ofForm = kinds();
    if (std::none_of(ofForm.begin(), ofForm.end(),
                     [&](TraceKind kind) { return request.takes(kind); })) {
        return {};
    }
    removeLeftBeside(*fileManager_, path_);
    const auto contents = contentsIfThere(*fileManager_, path_);
    if (!contents) {
        return {};
    }
    const PropertyList root = PropertyList::parse(*contents);
    const PropertyList left = withoutEntries(root, request);
    if (!(left == root)) {
        fileManager_->replace(path_, left.dataLike(*contents));
    }
    return {};
}

}  // namespace browsersweep
