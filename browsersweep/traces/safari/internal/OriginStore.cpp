#include "browsersweep/traces/safari/internal/OriginStore.h"

#include <algorithm>
#include <array>
#include <utility>

#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/traces/safari/internal/OriginRecord.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Kind = FolderEntry::Kind;

constexpr std::string_view unknown =
    "data that does not say which site it belongs to; any site may have left it";

/** Of these a folder may hold some when nothing else is left in it. */
bool isMarker(const FolderEntry& entry) {
    return entry.kind == Kind::file && (entry.name == originFile || entry.name == ".DS_Store");
}

void addFrames(const FileManager& fileManager, const fs::path& page,
               std::vector<OriginFolder>& found) {
    for (const FolderEntry& frame : fileManager.entries(page)) {
        if (frame.kind != Kind::folder) {
            continue;
        }
        OriginFolder folder{page / frame.name, {}, {}};
        folder.owner = ownerOfOriginFolder(fileManager, folder.path);
        for (FolderEntry& entry : fileManager.entries(folder.path)) {
            if (!isMarker(entry)) {
                folder.entries.push_back(std::move(entry));
            }
        }
        found.push_back(std::move(folder));
    }
}

std::vector<OriginFolder> foldersByOriginFile(const FileManager& fileManager,
                                              const fs::path& root) {
    std::vector<OriginFolder> found;
    for (const FolderEntry& page : fileManager.entries(root)) {
        if (page.kind == Kind::folder) {
            addFrames(fileManager, root / page.name, found);
        }
    }
    return found;
}

/** "https_www.example.com_0": scheme, host and port. A database has a digest or letters instead. */
bool isOrigin(std::string_view name) {
    const auto port = name.rfind('_');
    return name.find('_') < port && name.find_first_not_of("0123456789", port + 1) == name.npos;
}

/** What is of no web site is the browser's own or an extension's. */
FolderOwner ownerInName(std::string_view name) {
    FolderOwner owner{hostsIn(SiteForm::originIdentifier, name), false};
    owner.isBrowsersOwn = owner.hosts.empty();
    return owner;
}

/** What is no frame's folder is a database of the page. */
std::vector<OriginFolder> foldersByName(const FileManager& fileManager, const fs::path& root) {
    std::vector<OriginFolder> found;
    for (const FolderEntry& page : fileManager.entries(root)) {
        if (page.kind != Kind::folder || !isOrigin(page.name)) {
            continue;
        }
        OriginFolder own{root / page.name, ownerInName(page.name), {}};
        for (FolderEntry& entry : fileManager.entries(own.path)) {
            if (entry.kind != Kind::folder || !isOrigin(entry.name)) {
                own.entries.push_back(std::move(entry));
                continue;
            }
            OriginFolder frame{own.path / entry.name, ownerInName(entry.name), {}};
            frame.entries = fileManager.entries(frame.path);
            const auto& ofPage = own.owner.hosts;
            frame.owner.hosts.insert(frame.owner.hosts.end(), ofPage.begin(), ofPage.end());
            found.push_back(std::move(frame));
        }
        found.push_back(std::move(own));
    }
    return found;
}

TraceKind kindOfFolder(std::string_view name) {
    constexpr std::array<std::string_view, 2> ofWorkers{"CacheStorage", "ServiceWorkers"};
    const bool isOfWorker = std::find(ofWorkers.begin(), ofWorkers.end(), name) != ofWorkers.end();
    return isOfWorker ? TraceKind::serviceWorkers : TraceKind::siteStorage;
}

TraceKind siteStorage(std::string_view /*name*/) {
    return TraceKind::siteStorage;
}

}  // namespace

OriginLayout layoutByOriginFile() {
    return {foldersByOriginFile, kindOfFolder, {TraceKind::siteStorage, TraceKind::serviceWorkers}};
}

OriginLayout layoutByName() {
    return {foldersByName, siteStorage, {TraceKind::siteStorage}};
}

OriginStore::OriginStore(fs::path root, OriginLayout layout,
                         std::shared_ptr<const FileManager> fileManager)
    : root_(std::move(root)), layout_(std::move(layout)), fileManager_(std::move(fileManager)) {}

std::vector<OriginFolder> OriginStore::ofSites() const {
    std::vector<OriginFolder> folders = layout_.find(*fileManager_, root_);
    std::erase_if(folders, [](const OriginFolder& each) { return each.owner.isBrowsersOwn; });
    return folders;
}

TraceListing OriginStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    CleanableDataSize lost;
    for (const OriginFolder& folder : ofSites()) {
        for (const FolderEntry& entry : folder.entries) {
            const CleanableDataSize size = sizeOfAll(*fileManager_, folder.path, entry);
            collector.add(layout_.kindOf(entry.name), folder.owner.hosts, size, entry.modified);
            lost = folder.owner.hosts.empty() ? lost + size : lost;
        }
        if (folder.entries.empty()) {  // that it is there says that the site was
            collector.add(TraceKind::siteStorage, folder.owner.hosts, {1, 0});
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (lost.itemCount.value > 0) {
        listing.notBySite.push_back({TraceKind::siteStorage, root_, lost, std::string(unknown)});
    }
    return listing;
}

void OriginStore::removeIfOver(const fs::path& folder) const {
    const auto entries = fileManager_->entries(folder);
    if (std::all_of(entries.begin(), entries.end(), isMarker)) {
        removeAll(*fileManager_, folder);
    }
}

void OriginStore::remove(const OriginFolder& folder, const ForgetRequest& request) const {
    bool isAnyTaken = request.takes(TraceKind::siteStorage) && folder.entries.empty();
    for (const FolderEntry& entry : folder.entries) {
        if (request.takes(layout_.kindOf(entry.name))) {
            removeAll(*fileManager_, folder.path, entry);
            isAnyTaken = true;
        }
    }
    if (!isAnyTaken) {
        return;
    }
    for (fs::path path = folder.path; path != root_; path = path.parent_path()) {
        removeIfOver(path);
    }
}

ForgetOutcome OriginStore::forget(const ForgetRequest& request) const {
    ForgetOutcome outcome;
    for (const OriginFolder& folder : ofSites()) {
        EntrySelector selector(request, true);
        if (selector.selects(folder.owner.hosts)) {
            remove(folder, request);
        } else if (selector.hasKeptUnknown() && request.takes(TraceKind::siteStorage)) {
            outcome.kept.push_back({TraceKind::siteStorage, folder.path, std::string(unknown)});
        }
    }
    return outcome;
}

}  // namespace browsersweep
