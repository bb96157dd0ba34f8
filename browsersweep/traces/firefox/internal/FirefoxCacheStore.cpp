#include "browsersweep/traces/firefox/internal/FirefoxCacheStore.h"

#include <cstdint>
#include <string_view>
#include <utility>

#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

constexpr std::size_t numberSize = 4;

/** Any site may stand there, and Firefox makes them anew each time it ends. */
constexpr std::string_view pagesOfFirefox =
    "Firefox's own pages, such as a new tab with the most visited sites; they go along with any "
    "site, and Firefox makes new ones";

/** Numbers begin with their highest byte; none stands beyond the end. */
std::uint64_t numberAt(BytesView file, std::uint64_t place) noexcept {
    std::uint64_t number = 0;
    for (std::uint64_t end = place + numberSize; place < end && place < file.size(); ++place) {
        number = number << 8U | file[static_cast<std::size_t>(place)];
    }
    return number;
}

/** Two bytes for each piece of the contents. */
std::uint64_t digestsOfPieces(std::uint64_t contents) noexcept {
    constexpr std::uint64_t pieceSize = 262144;
    return (contents + pieceSize - 1) / pieceSize * 2;
}

/** What a response tells of itself, and its server's certificates, are a few pages. */
std::uint64_t longestMetadata(std::uint64_t contents) noexcept {
    return digestsOfPieces(contents) + (std::uint64_t{16} << 20);
}

bool isNamedIn(const std::string& key, const SiteSelection& selection) {
    return selection.isOnly() && namesAny(key, selection.sites());
}

}  // namespace

std::size_t lengthOfFirefoxCacheMetadata(BytesView lastBytes, std::uint64_t size) {
    if (lastBytes.size() < numberSize) {
        return 0;
    }
    const std::uint64_t contents = numberAt(lastBytes, lastBytes.size() - numberSize);
    const bool isSound = contents <= size && size - contents <= longestMetadata(contents);
    return isSound ? static_cast<std::size_t>(size - contents) : 0;
}

// The last number says how long the contents are. Behind these stand a digest, two bytes for each
// piece of them, seven or eight numbers, the sixth of which after the version is the key's length,
// and the key.
std::string keyInFirefoxCacheMetadata(BytesView metadata) {
    constexpr std::uint64_t numbersBefore = 6;
    constexpr std::uint64_t withFlags = 2;
    if (metadata.size() < numberSize) {
        return {};
    }
    const std::uint64_t contents = numberAt(metadata, metadata.size() - numberSize);
    const std::uint64_t header = numberSize + digestsOfPieces(contents);
    const std::uint64_t length = numberAt(metadata, header + numbersBefore * numberSize);
    const bool hasFlags = numberAt(metadata, header) >= withFlags;
    const std::uint64_t key = header + (numbersBefore + (hasFlags ? 2 : 1)) * numberSize;
    if (key > metadata.size() || length > metadata.size() - key) {
        return {};
    }
    return std::string(
        textOf(metadata.subspan(static_cast<std::size_t>(key), static_cast<std::size_t>(length))));
}

std::vector<std::string> hostsInFirefoxCacheKey(const std::string& key) {
    std::vector<std::string> hosts;
    const auto colon = key.find(':');  // what stands before it has none
    if (colon != std::string::npos) {
        hosts = hostsIn(SiteForm::address, std::string_view(key).substr(colon + 1));
    }
    for (std::string& host : hostsIn(SiteForm::originAttributes, key.substr(0, colon))) {
        hosts.push_back(std::move(host));
    }
    return hosts;
}

FirefoxCacheStore::FirefoxCacheStore(std::filesystem::path folder,
                                     std::shared_ptr<const FileManager> fileManager,
                                     std::shared_ptr<KeyMemory> memory)
    : folder_(std::move(folder)),
      fileManager_(std::move(fileManager)),
      memory_(std::move(memory)) {}

std::shared_ptr<const TraceStore> FirefoxCacheStore::remembering() const {
    return std::make_shared<FirefoxCacheStore>(folder_, fileManager_,
                                               std::make_shared<KeyMemory>());
}

// The contents, which may be long, are not read, and most files are opened once.
std::string FirefoxCacheStore::keyIn(const std::filesystem::path& file, std::uint64_t size) const {
    constexpr std::size_t usual = 16384;
    const Bytes end = lastBytesIfThere(*fileManager_, file, usual);
    const std::size_t length = lengthOfFirefoxCacheMetadata(end, size);
    if (length > end.size()) {
        return keyInFirefoxCacheMetadata(lastBytesIfThere(*fileManager_, file, length));
    }
    return keyInFirefoxCacheMetadata(BytesView(end).last(length));
}

std::string FirefoxCacheStore::keyOf(const FolderEntry& entry, Date beforeListing) const {
    if (entry.kind != FolderEntry::Kind::file) {
        return {};
    }
    const auto read = [&] { return keyIn(folder_ / "entries" / entry.name, entry.size); };
    return memory_ ? memory_->keyOf(entry, beforeListing, read).value_or("") : read();
}

void FirefoxCacheStore::visitEntries(const Visit& visit) const {
    const auto control = fileManager_->control();
    const auto entries = folder_ / "entries";
    const Date beforeListing = ReferenceClock::now();
    for (const FolderEntry& entry : fileManager_->entries(entries)) {
        continueOrThrow(control.get());
        if (entry.kind != FolderEntry::Kind::folder) {
            visit(entry, keyOf(entry, beforeListing));
        }
    }
}

TraceListing FirefoxCacheStore::list(const KnownHosts& /*knownHosts*/) const {
    TraceCollector collector;
    CleanableDataSize ownPages;
    visitEntries([&](const FolderEntry& entry, const std::string& key) {
        const auto hosts = hostsInFirefoxCacheKey(key);
        const CleanableDataSize size{1, entry.size};
        collector.add(TraceKind::cachedFiles, hosts, size, entry.modified);
        ownPages = hosts.empty() ? ownPages + size : ownPages;
    });
    TraceListing listing{collector.takeTraces(), {}};
    if (ownPages.itemCount.value > 0) {
        listing.notBySite.push_back({TraceKind::cachedFiles, folder_ / "entries", ownPages,
                                     std::string(pagesOfFirefox), true});
    }
    return listing;
}

/** Entries on their way out, and the index, which has a digest of each key. */
void FirefoxCacheStore::removeWhatNobodyNeeds() const {
    for (const FolderEntry& entry : fileManager_->entries(folder_)) {
        if (entry.name != "entries") {
            removeAll(*fileManager_, folder_, entry);
        }
    }
}

ForgetOutcome FirefoxCacheStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::cachedFiles)) {
        return {};
    }
    if (request.sites.isEverything()) {
        removeAll(*fileManager_, folder_);
        return {};
    }
    SiteMatcher matcher(request.sites);
    std::set<std::string, std::less<>> names;
    visitEntries([&](const FolderEntry& entry, const std::string& key) {
        const auto hosts = hostsInFirefoxCacheKey(key);
        if (hosts.empty() || matcher.selectsHosts(hosts) || isNamedIn(key, request.sites)) {
            names.insert(entry.name);
        }
    });
    removeNamed(*fileManager_, folder_ / "entries", names);
    removeWhatNobodyNeeds();
    return {};
}

}  // namespace browsersweep
