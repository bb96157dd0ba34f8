#include "browsersweep/traces/safari/internal/TabListStore.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/documents/propertylist/PropertyList.h"
#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/traces/safari/internal/TabList.h"

namespace browsersweep {
namespace {

constexpr std::string_view elsewhere =
    "notes beside the open and closed tabs of any site; without this file Safari cannot reopen any "
    "of them";

CleanableDataSize approximately(std::size_t bytes) {
    return {1, {bytes, true}};
}

/** Whether sites are named there beside the tabs. */
bool namesElsewhere(const PropertyList& root) {
    SiteMatcher all(SiteSelection::everything());
    return !hostsInValue(withoutTabs(root, all)).empty();
}

/** Without the members that name sites and hold no tab. */
PropertyList withoutNotesBeside(const PropertyList& root) {
    if (root.asDictionary() == nullptr) {
        return root;
    }
    PropertyList::Dictionary left = *root.asDictionary();
    std::erase_if(left, [](const PropertyList::Entry& member) {
        return tabsIn(member.value).empty() && namesElsewhere(member.value);
    });
    return PropertyList::dictionary(std::move(left));
}

}  // namespace

TabListStore::TabListStore(std::filesystem::path file,
                           std::shared_ptr<const FileManager> fileManager)
    : file_(std::move(file)), fileManager_(std::move(fileManager)) {}

// The list of pages to go back to is one more trace, which a site shares with that of the tab.
TraceListing TabListStore::list(const KnownHosts& /*knownHosts*/) const {
    const auto contents = contentsIfThere(*fileManager_, file_);
    if (!contents) {
        return {};
    }
    const PropertyList root = PropertyList::parse(*contents);
    TraceCollector collector;
    for (const ListedTab& tab : tabsIn(root)) {
        collector.add(TraceKind::openTabs, tab.hosts, approximately(tab.bytes), tab.lastUsed);
        if (!tab.earlier.empty()) {
            auto hosts = tab.hosts;
            hosts.insert(hosts.end(), tab.earlier.begin(), tab.earlier.end());
            collector.add(TraceKind::openTabs, hosts, approximately(0), tab.lastUsed);
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (namesElsewhere(root)) {
        listing.notBySite.push_back(
            {TraceKind::openTabs, file_, approximately(contents->size()), std::string(elsewhere)});
    }
    return listing;
}

ForgetOutcome TabListStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::openTabs)) {
        return {};
    }
    removeLeftBeside(*fileManager_, file_);
    if (request.sites.isEverything()) {
        removeAll(*fileManager_, file_);
        return {};
    }
    const auto contents = contentsIfThere(*fileManager_, file_);
    if (!contents) {
        return {};
    }
    const PropertyList root = PropertyList::parse(*contents);
    SiteMatcher matcher(request.sites);
    PropertyList left = withoutTabs(root, matcher);
    if (namesElsewhere(root) && request.takesMixedOf(TraceKind::openTabs)) {
        if (request.sites.isOnly() || tabsIn(left).empty()) {
            removeAll(*fileManager_, file_);
            return {};
        }
        left = withoutNotesBeside(left);  // the tabs of the sites that are kept stay
    }
    if (!(left == root)) {
        fileManager_->replace(file_, left.dataLike(*contents));
    }
    if (namesElsewhere(left)) {
        return {{{TraceKind::openTabs, file_, std::string(elsewhere)}}, true};
    }
    return {};
}

}  // namespace browsersweep
