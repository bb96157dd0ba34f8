#include "browsersweep/sites/internal/CacheStore.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/SiteMatcher.h"
#include "browsersweep/sites/internal/SiteText.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

constexpr std::string_view inBlocks =
    "a cache whose files hold parts of many entries, loaded by any site; without it pages load "
    "more slowly at first";

constexpr std::string_view withoutKey =
    "damaged cache entries that do not say where they were loaded from; they may belong to any "
    "site";

/** Compiled scripts lie under a digest of their own, and what was loaded refers to that. */
constexpr std::size_t digestLength = 64;
constexpr std::size_t longestReference = 8192;

bool isDigit(char letter) noexcept {
    return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'F');
}

bool isDigest(std::string_view text) noexcept {
    return text.size() == digestLength && std::all_of(text.begin(), text.end(), isDigit);
}

std::optional<std::string> digestIn(std::string_view text) {
    std::size_t run = 0;
    for (std::size_t place = 0; place < text.size(); ++place) {
        run = isDigit(text[place]) ? run + 1 : 0;
        if (run == digestLength) {
            return std::string(text.substr(place + 1 - digestLength, digestLength));
        }
    }
    return std::nullopt;
}

std::string_view keyOrNothing(const SimpleCacheFile& file) noexcept {
    return file.key ? std::string_view(*file.key) : std::string_view();
}

/** A cache's entries: whose they are, those under a digest by who refers to them. */
class Entries {
public:
    struct Entry {
        SimpleCacheFile file;
        std::vector<std::string> hosts;
        std::vector<std::vector<std::string>> users;  ///< of one under a digest
    };

    Entries(const SimpleCache& cache, const FileManager& fileManager) {
        isInBlocks_ = !cache.visit([&](SimpleCacheFile&& file) {
            const std::string_view key = keyOrNothing(file);
            hasDigests_ = hasDigests_ || isDigest(key);
            auto hosts = hostsIn(SiteForm::networkKey, key);
            entries_.push_back({std::move(file), std::move(hosts), {}});
        });
        if (hasDigests_) {
            findUsers(cache, fileManager);
        }
    }

    /** Whether it is in the older format, and its entries cannot be told apart. */
    bool isInBlocks() const noexcept { return isInBlocks_; }

    const std::vector<Entry>& all() const noexcept { return entries_; }

private:
    void findUsers(const SimpleCache& cache, const FileManager& fileManager) {
        std::map<std::string, std::vector<std::vector<std::string>>, std::less<>> users;
        for (const Entry& entry : entries_) {
            if (isDigest(keyOrNothing(entry.file)) || entry.file.size > longestReference) {
                continue;
            }
            const Bytes bytes =
                firstBytesIfThere(fileManager, cache.folder() / entry.file.name, longestReference);
            if (const auto digest = digestIn(textOf(bytes))) {
                users[*digest].push_back(entry.hosts);
            }
        }
        for (Entry& entry : entries_) {
            const auto found = users.find(keyOrNothing(entry.file));
            if (found != users.end()) {
                entry.users = found->second;
            }
        }
    }

    std::vector<Entry> entries_;
    bool isInBlocks_ = false;
    bool hasDigests_ = false;
};

/** An address of one site may hold another one's name, as what was typed into a search does. */
bool isNamedIn(std::string_view key, const SiteSelection& selection) {
    return selection.isOnly() && namesAny(key, selection.sites());
}

/** What somebody who stays refers to, stays; what nobody refers to is of no use to anybody. */
bool isGoing(const Entries::Entry& entry, SiteMatcher& matcher) {
    const std::string_view key = keyOrNothing(entry.file);
    if (!isDigest(key)) {
        return matcher.selectsHosts(entry.hosts) || isNamedIn(key, matcher.selection());
    }
    return std::all_of(entry.users.begin(), entry.users.end(),
                       [&](const auto& hosts) { return matcher.selectsHosts(hosts); });
}

std::set<std::string, std::less<>> namesOfGoing(const Entries& entries,
                                                const ForgetRequest& request) {
    std::set<std::string, std::less<>> names;
    SiteMatcher matcher(request.sites);
    const bool takesDamaged = request.takesMixedOf(TraceKind::cachedFiles);
    for (const Entries::Entry& entry : entries.all()) {
        if (entry.file.key ? isGoing(entry, matcher) : takesDamaged) {
            names.insert(entry.file.name);
        }
    }
    return names;
}

}  // namespace

CacheStore::CacheStore(std::filesystem::path folder, std::shared_ptr<const FileManager> fileManager,
                       std::shared_ptr<KeyMemory> memory)
    : fileManager_(std::move(fileManager)),
      cache_(std::move(folder), fileManager_, std::move(memory)) {}

std::shared_ptr<const TraceStore> CacheStore::remembering() const {
    return std::make_shared<CacheStore>(path(), fileManager_, std::make_shared<KeyMemory>());
}

TraceListing CacheStore::list(const KnownHosts& /*knownHosts*/) const {
    const Entries entries(cache_, *fileManager_);
    if (entries.isInBlocks()) {
        return {{},
                {{TraceKind::cachedFiles, path(), sizeOfAll(*fileManager_, path()),
                  std::string(inBlocks)}}};
    }
    TraceCollector collector;
    CleanableDataSize damaged;
    for (const Entries::Entry& entry : entries.all()) {
        const CleanableDataSize size{1, entry.file.size};
        damaged = entry.file.key ? damaged : damaged + size;
        collector.add(TraceKind::cachedFiles, entry.hosts, size, entry.file.modified);
        for (const auto& hosts : entry.users) {
            collector.add(TraceKind::cachedFiles, hosts, size);
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (damaged.itemCount.value > 0) {
        listing.notBySite.push_back(
            {TraceKind::cachedFiles, path(), damaged, std::string(withoutKey)});
    }
    return listing;
}

ForgetOutcome CacheStore::forget(const ForgetRequest& request) const {
    if (!request.takes(TraceKind::cachedFiles)) {
        return {};
    }
    if (request.sites.isEverything()) {
        removeAll(*fileManager_, path());
        return {};
    }
    const Entries entries(cache_, *fileManager_);
    if (!entries.isInBlocks()) {
        cache_.remove(namesOfGoing(entries, request));
        return {};
    }
    if (request.takesMixedOf(TraceKind::cachedFiles)) {
        removeAll(*fileManager_, path());
        return {};
    }
    return {{{TraceKind::cachedFiles, path(), std::string(inBlocks)}}, true};
}

}  // namespace browsersweep
