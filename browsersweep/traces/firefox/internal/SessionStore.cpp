#include "browsersweep/traces/firefox/internal/SessionStore.h"

#include <optional>
#include <span>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"
#include "browsersweep/traces/firefox/internal/MozLz4.h"
#include "browsersweep/traces/firefox/internal/SessionDocument.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view named =
    "pages of other sites, in open and closed tabs, that mention this site";

/** The state that a file holds; absent where it is none, or none that can be read. */
std::optional<SessionDocument> documentIn(const FileManager& fileManager, const fs::path& file,
                                          const FolderEntry& entry) {
    if (entry.kind != FolderEntry::Kind::file) {
        return std::nullopt;
    }
    try {
        return SessionDocument(decodedMozLz4(fileManager.contents(file)));
    } catch (const DecodingError&) {
        return std::nullopt;  // told as what tells no site apart
    }
}

}  // namespace

SessionStore::SessionStore(fs::path path, std::string_view meaning,
                           std::shared_ptr<const FileManager> fileManager)
    : path_(std::move(path)), meaning_(meaning), fileManager_(std::move(fileManager)) {}

std::set<TraceKind> SessionStore::kinds() const {
    return {TraceKind::openTabs, TraceKind::cookies, TraceKind::siteStorage};
}

// A link is seen as what it is: what it leads to is somebody else's.
SessionStore::Files SessionStore::files() const {
    Files files;
    for (FolderEntry& entry : fileManager_->entries(path_.parent_path())) {
        if (entry.name != path_.filename()) {
            continue;
        }
        if (entry.kind != FolderEntry::Kind::folder) {
            files.emplace(path_, std::move(entry));
            continue;
        }
        for (FolderEntry& below : fileManager_->entries(path_)) {
            fs::path file = path_ / below.name;
            files.emplace(std::move(file), std::move(below));
        }
    }
    return files;
}

TraceListing SessionStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    TraceListing listing;
    const auto control = fileManager_->control();
    for (const auto& [file, entry] : files()) {
        if (auto document = documentIn(*fileManager_, file, entry)) {
            document->prune(
                [&](TraceKind kind, std::span<const std::string> hosts, std::uint64_t byteCount) {
                    continueOrThrow(control.get());
                    collector.add(kind, hosts, {1, byteCount});
                    return false;
                });
        } else {
            listing.notBySite.push_back(
                {TraceKind::openTabs, file, sizeOfAll(*fileManager_, file), meaning_});
        }
    }
    listing.bySite = collector.takeTraces();
    return listing;
}

void SessionStore::forgetIn(const fs::path& file, const FolderEntry& entry,
                            const ForgetRequest& request, ForgetOutcome& outcome) const {
    auto document = documentIn(*fileManager_, file, entry);
    if (!document && request.takesMixedOf(TraceKind::openTabs)) {
        removeAll(*fileManager_, file);
    } else if (!document) {
        outcome.kept.push_back({TraceKind::openTabs, file, meaning_});
    }
    if (!document) {
        return;
    }
    SiteMatcher matcher(request.sites);
    const auto control = fileManager_->control();
    document->prune(
        [&](TraceKind kind, std::span<const std::string> hosts, std::uint64_t /*byteCount*/) {
            continueOrThrow(control.get());
            return request.takes(kind) && matcher.selectsHosts(hosts);
        });
    const std::string edited = document->edited();
    if (document->isChanged()) {
        fileManager_->replace(file, encodedMozLz4(edited));
    }
    if (request.sites.isOnly() && namesAny(edited, request.sites.sites())) {
        outcome.kept.push_back({TraceKind::openTabs, file, std::string(named)});
    }
}

// Cookies of the session and what is stored for it are in the same files as the tabs: the files go
// as a whole where all of these do.
ForgetOutcome SessionStore::forget(const ForgetRequest& request) const {
    ForgetOutcome outcome;
    removeLeftBeside(*fileManager_, path_);
    if (request.sites.isEverything() && request.takes(TraceKind::openTabs) &&
        request.takes(TraceKind::cookies) && request.takes(TraceKind::siteStorage)) {
        removeAll(*fileManager_, path_);
        return outcome;
    }
    for (const auto& [file, entry] : files()) {
        removeLeftBeside(*fileManager_, file);
        forgetIn(file, entry, request, outcome);
    }
    return outcome;
}

}  // namespace browsersweep
