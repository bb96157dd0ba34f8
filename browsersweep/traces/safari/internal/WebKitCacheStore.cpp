#include "browsersweep/traces/safari/internal/WebKitCacheStore.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Kind = FolderEntry::Kind;

/** Every record begins with its key, and an address is hardly longer than this. */
constexpr std::size_t largestKey = std::size_t{64} << 10;
/** What a record of another type names may be of any site; none is longer than this. */
constexpr std::size_t largestList = std::size_t{16} << 20;

constexpr std::string_view unreadable =
    "cached files in a format that cannot be read, loaded by any site; without them pages load "
    "more slowly at first";

constexpr std::string_view wasteMeaning =
    "contents of cached files whose records are gone; they go along with any site, as nothing "
    "needs them";

constexpr std::string_view blobEnding = "-blob";

/** Below the folder of all records: those of a site, and of a type. */
constexpr int recordLevels = 2;

}  // namespace

/** The names of the files that a going record has, and which contents those that stay have. */
struct WebKitCacheStore::Sorted {
    std::vector<std::pair<fs::path, FolderEntry>> going;
    Bodies bodiesThatStay;
};

WebKitCacheStore::WebKitCacheStore(fs::path folder, std::shared_ptr<const FileManager> fileManager)
    : folder_(std::move(folder)), fileManager_(std::move(fileManager)) {}

void WebKitCacheStore::visitVersions(const std::function<void(const fs::path&)>& visit) const {
    for (const FolderEntry& version : fileManager_->entries(folder_)) {
        if (version.kind == Kind::folder && version.name.starts_with("Version ")) {
            visit(folder_ / version.name);
        }
    }
}

// The levels are the site that a record was loaded in, by a digest, and the record's type.
void WebKitCacheStore::visitEntries(const fs::path& version, const Visit& visit) const {
    const fs::path records = version / "Records";
    for (const FolderEntry& partition : fileManager_->entries(records)) {
        for (const FolderEntry& type : fileManager_->entries(records / partition.name)) {
            visitFolder(records / partition.name / type.name, visit);
        }
    }
}

void WebKitCacheStore::visitFolder(const fs::path& folder, const Visit& visit) const {
    const auto control = fileManager_->control();
    std::map<std::string, FolderEntry, std::less<>> blobs;
    std::vector<FolderEntry> files;
    for (FolderEntry& entry : fileManager_->entries(folder)) {
        const std::string_view name = entry.name;
        if (name.ends_with(blobEnding)) {
            std::string key(name.substr(0, name.size() - blobEnding.size()));
            blobs.emplace(std::move(key), std::move(entry));
        } else if (entry.kind == Kind::file) {
            files.push_back(std::move(entry));
        }
    }
    for (FolderEntry& file : files) {
        continueOrThrow(control.get());
        const Bytes start = firstBytesIfThere(*fileManager_, folder / file.name, largestKey);
        Entry entry{folder, std::move(file), {}, webKitCacheRecord(textOf(start)), false};
        if (auto found = blobs.extract(entry.file.name)) {
            entry.blob = std::move(found.mapped());
        }
        visit(entry);
    }
    for (auto& [name, blob] : blobs) {  // without its record nobody needs it
        visit({folder, std::move(blob), {}, {}, true});
    }
}

/** The contents that an entry may need: those of no name where it cannot be read. */
void WebKitCacheStore::noteBody(const Entry& entry, Bodies& bodies) {
    if (!entry.isWaste) {
        bodies.insert(entry.record ? entry.record->body : std::string());
    }
}

TraceListing WebKitCacheStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    CleanableDataSize unread;
    CleanableDataSize waste;
    Bodies bodies;
    const auto add = [&](const Entry& entry) {
        const CleanableDataSize size{1, entry.file.size + (entry.blob ? entry.blob->size : 0)};
        noteBody(entry, bodies);
        if (entry.record) {
            collector.add(TraceKind::cachedFiles, entry.record->hosts(), size, entry.file.modified);
        }
        if (!entry.record) {
            CleanableDataSize& unknown = entry.isWaste ? waste : unread;
            unknown = unknown + size;
        }
    };
    visitVersions([&](const fs::path& version) {
        bodies.clear();
        visitEntries(version, add);
        for (const FolderEntry& body : bodiesBeyond(version, bodies)) {
            waste = waste + sizeOfAll(*fileManager_, version / "Blobs", body);
        }
    });
    TraceListing listing{collector.takeTraces(), {}};
    if (unread.itemCount.value > 0) {
        listing.notBySite.push_back(
            {TraceKind::cachedFiles, folder_, unread, std::string(unreadable)});
    }
    if (waste.itemCount.value > 0) {
        listing.notBySite.push_back(
            {TraceKind::cachedFiles, folder_, waste, std::string(wasteMeaning), true});
    }
    return listing;
}

/** An address of one site may hold another one's name; a list of what a page loads may name any. */
bool WebKitCacheStore::isNamedIn(const Entry& entry, const SiteSelection& selection) const {
    if (entry.record && entry.record->type == "Resource") {
        return namesAny(entry.record->identifier, selection.sites());
    }
    const Bytes all = firstBytesIfThere(*fileManager_, entry.folder / entry.file.name, largestList);
    return namesAny(textOf(all), selection.sites());
}

bool WebKitCacheStore::isGoing(const Entry& entry, EntrySelector& selector,
                               const SiteSelection& selection) const {
    if (entry.isWaste || (selection.isOnly() && isNamedIn(entry, selection))) {
        return true;
    }
    // What has a record that names no web site is the browser's.
    const auto hosts = entry.record ? entry.record->hosts() : std::vector<std::string>();
    return (entry.record && hosts.empty() && selection.isOnly()) ? false : selector.selects(hosts);
}

/**
 * Whether every record was visited. Behind a link, in a folder that may not be opened, and in
 * another layout there may be more.
 */
bool WebKitCacheStore::seesAll(const fs::path& folder, int levels) const {
    if (!fileManager_->enumerator(folder)) {
        return false;
    }
    const auto entries = fileManager_->entries(folder);
    return std::all_of(entries.begin(), entries.end(), [&](const FolderEntry& entry) {
        if (entry.kind == Kind::file) {
            return levels == 0 || entry.name.starts_with('.');
        }
        return levels > 0 && entry.kind == Kind::folder && seesAll(folder / entry.name, levels - 1);
    });
}

/** The files of contents that no record needs any more. */
std::vector<FolderEntry> WebKitCacheStore::bodiesBeyond(const fs::path& version,
                                                        const Bodies& needed) const {
    if (needed.contains("") || !seesAll(version / "Records", recordLevels)) {
        return {};  // a record that cannot be read or seen may need any of them
    }
    std::vector<FolderEntry> bodies = fileManager_->entries(version / "Blobs");
    std::erase_if(bodies, [&](const FolderEntry& body) { return needed.contains(body.name); });
    return bodies;
}

void WebKitCacheStore::removeFrom(const fs::path& version, EntrySelector& selector,
                                  const SiteSelection& selection) const {
    Sorted sorted;
    visitEntries(version, [&](const Entry& entry) {
        if (!isGoing(entry, selector, selection)) {
            noteBody(entry, sorted.bodiesThatStay);
            return;
        }
        for (const auto& file : {std::optional(entry.file), entry.blob}) {
            if (file) {
                sorted.going.emplace_back(entry.folder, *file);
            }
        }
    });
    // Contents first: without a record nobody could tell any more whose they are.
    for (const FolderEntry& body : bodiesBeyond(version, sorted.bodiesThatStay)) {
        removeAll(*fileManager_, version / "Blobs", body);
    }
    for (const auto& [folder, file] : sorted.going) {
        removeAll(*fileManager_, folder, file);
    }
}

ForgetOutcome WebKitCacheStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::cachedFiles)) {
        return {};
    }
    if (request.sites.isEverything()) {
        removeAll(*fileManager_, folder_);
        return {};
    }
    EntrySelector selector(request, true);
    visitVersions([&](const fs::path& version) { removeFrom(version, selector, request.sites); });
    ForgetOutcome outcome;
    if (selector.hasKeptUnknown()) {
        outcome.kept.push_back({TraceKind::cachedFiles, folder_, std::string(unreadable)});
    }
    return outcome;
}

}  // namespace browsersweep
