#include "browsersweep/traces/firefox/internal/ThumbnailStore.h"

#include <string_view>
#include <utility>

#include "browsersweep/documents/internal/Digest.h"
#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/traces/firefox/internal/HeldPlaces.h"

namespace browsersweep {
namespace {

constexpr std::string_view meaning =
    "pictures of pages that are not in the history, named by hashes of their addresses; Firefox "
    "makes new ones";

}  // namespace

ThumbnailStore::ThumbnailStore(std::filesystem::path folder, std::filesystem::path places,
                               std::shared_ptr<const FileManager> fileManager)
    : folder_(std::move(folder)),
      places_(std::move(places)),
      fileManager_(std::move(fileManager)) {}

// An ending may follow the digest: ".png", and ".png.tmp" of a file that was not finished.
ThumbnailStore::HostsByFile ThumbnailStore::hostsOf(const std::vector<FolderEntry>& files,
                                                    const KnownHosts& knownHosts) const {
    HostsByFile byDigest;
    for (const FolderEntry& file : files) {
        byDigest[file.name.substr(0, file.name.find('.'))];
    }
    const auto tryAddress = [&byDigest](std::string_view address) {
        if (const auto found = byDigest.find(md5InDigits(address)); found != byDigest.end()) {
            found->second = hostsIn(SiteForm::address, address);
        }
    };
    if (byDigest.empty()) {
        return byDigest;
    }
    const auto control = fileManager_->control();
    for (const std::string& host : knownHosts) {
        continueOrThrow(control.get());
        tryAddress("https://" + host + "/");
        tryAddress("http://" + host + "/");
    }
    visitPlaces(places_, fileManager_, tryAddress);
    HostsByFile byFile;
    for (const FolderEntry& file : files) {
        byFile[file.name] = byDigest[file.name.substr(0, file.name.find('.'))];
    }
    return byFile;
}

TraceListing ThumbnailStore::list(const KnownHosts& knownHosts) const {
    const auto files = fileManager_->entries(folder_);
    const HostsByFile hosts = hostsOf(files, knownHosts);
    const auto control = fileManager_->control();
    TraceCollector collector;
    CleanableDataSize unknown;
    for (const FolderEntry& file : files) {
        continueOrThrow(control.get());
        const auto& owners = hosts.at(file.name);
        const CleanableDataSize size = sizeOfAll(*fileManager_, folder_, file);
        collector.add(TraceKind::predictions, owners, size, file.modified);
        if (owners.empty()) {
            unknown = unknown + size;
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (unknown.itemCount.value > 0) {
        listing.notBySite.push_back(
            {TraceKind::predictions, folder_, unknown, std::string(meaning)});
    }
    return listing;
}

ForgetOutcome ThumbnailStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::predictions)) {
        return {};
    }
    if (request.sites.isEverything()) {
        removeAll(*fileManager_, folder_);
        return {};
    }
    const auto files = fileManager_->entries(folder_);
    const HostsByFile hosts = hostsOf(files, request.knownHosts);
    EntrySelector selector(request, true);
    for (const FolderEntry& file : files) {
        if (selector.selects(hosts.at(file.name))) {
            removeAll(*fileManager_, folder_, file);
        }
    }
    ForgetOutcome outcome;
    if (selector.hasKeptUnknown()) {
        outcome.kept.push_back({TraceKind::predictions, folder_, std::string(meaning)});
    }
    return outcome;
}

}  // namespace browsersweep
