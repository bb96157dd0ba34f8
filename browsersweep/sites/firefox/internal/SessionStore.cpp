#include "browsersweep/sites/firefox/internal/SessionStore.h"

#include <optional>
#include <span>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/firefox/internal/MozLz4.h"
#include "browsersweep/sites/firefox/internal/SessionDocument.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view named = "pages of other sites that name it in open and closed tabs";

/** The state that a file holds; absent where it is none, or none that can be read. */
std::optional<SessionDocument> documentIn(const FileManager& fileManager, const fs::path& file) {
    if (!fileManager.fileExists(file).isFile()) {
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

std::set<fs::path> SessionStore::files() const {
    const FileExistence existence = fileManager_->fileExists(path_);
    if (!existence.isDirectory) {
        return existence.exists ? std::set{path_} : std::set<fs::path>();
    }
    std::set<fs::path> files;
    for (const FolderEntry& entry : fileManager_->entries(path_)) {
        files.insert(path_ / entry.name);
    }
    return files;
}

TraceListing SessionStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    TraceListing listing;
    for (const fs::path& file : files()) {
        if (auto document = documentIn(*fileManager_, file)) {
            document->prune(
                [&](TraceKind kind, std::span<const std::string> hosts, std::uint64_t byteCount) {
                    collector.add(kind, hosts, {1, byteCount});
                    return false;
                });
        } else {
            listing.notBySite.push_back(
                {TraceKind::openTabs, file, sizeOfAll(*fileManager_, file), meaning_});
        }
    }
    listing.bySite = collector.traces();
    return listing;
}

void SessionStore::forgetIn(const fs::path& file, const ForgetRequest& request,
                            ForgetOutcome& outcome) const {
    auto document = documentIn(*fileManager_, file);
    if (!document && request.takesMixedOf(TraceKind::openTabs)) {
        removeAll(*fileManager_, file);
    } else if (!document) {
        outcome.kept.push_back({TraceKind::openTabs, file, meaning_});
    }
    if (!document) {
        return;
    }
    SiteMatcher matcher(request.sites);
    document->prune(
        [&](TraceKind kind, std::span<const std::string> hosts, std::uint64_t /*byteCount*/) {
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
    for (const fs::path& file : files()) {
        removeLeftBeside(*fileManager_, file);
        forgetIn(file, request, outcome);
    }
    return outcome;
}

}  // namespace browsersweep
