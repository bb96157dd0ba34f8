#include "browsersweep/traces/firefox/internal/StateFileStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "browsersweep/sites/Site.h"
#include "browsersweep/sites/internal/EntrySelector.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/sites/internal/TraceCollector.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Hosts = std::vector<std::string>;

// Firefox keeps 2048 records, of at most 1286 bytes each.
constexpr std::uint64_t largestFile = std::uint64_t{4} << 20;

// A server, the one in its place and the site of the page, in older versions as addresses too.
constexpr std::size_t mostHosts = 8;

std::string_view upTo(std::string_view text, char mark) noexcept {
    return text.substr(0, text.find(mark));
}

void add(SiteForm form, std::string_view text, Hosts& hosts) {
    for (std::string& host : hostsIn(form, text)) {
        if (std::find(hosts.begin(), hosts.end(), host) == hosts.end()) {
            hosts.push_back(std::move(host));
        }
    }
}

/** The server that a key names, as "https:www.a.com:443"; empty where it names none. */
std::string_view serverIn(std::string_view key) noexcept {
    constexpr std::array<std::string_view, 2> schemes{"https:", "http:"};
    // Behind the port: whether it was in a private window.
    constexpr std::array<std::string_view, 2> marks{":.:", ":P:"};
    const bool isOfWeb = std::any_of(schemes.begin(), schemes.end(), [key](std::string_view each) {
        return key.starts_with(each);
    });
    const auto end = std::min(key.find(marks[0]), key.find(marks[1]));
    return isOfWeb && end != std::string_view::npos ? key.substr(0, end) : std::string_view();
}

/** Without the scheme and the port. An address in numbers has colons of its own. */
std::string_view hostOfServer(std::string_view server) noexcept {
    const auto scheme = server.find(':');
    const auto port = server.rfind(':');
    return port > scheme ? server.substr(scheme + 1, port - scheme - 1) : std::string_view();
}

/** Where the server's pages are to be had: its own host, or another one. */
std::string_view hostInstead(std::string_view value, std::string_view server) noexcept {
    if (!value.starts_with(server) || !value.substr(server.size()).starts_with(':')) {
        return {};
    }
    value.remove_prefix(server.size() + 1);
    const std::string_view own = hostOfServer(server);
    const bool isNumber = own.find(':') != std::string_view::npos;
    return isNumber && value.starts_with(own) ? own : upTo(value, ':');
}

}  // namespace

Hosts hostsOfSecurityState(const StateRecord& record) {
    std::string_view key = record.key;
    for (const std::string_view ending : {":HSTS", ":HPKP"}) {
        if (key.ends_with(ending)) {
            key.remove_suffix(ending.size());
        }
    }
    const std::string_view host = upTo(key, '^');
    Hosts hosts = hostsIn(SiteForm::host, host);
    if (!hosts.empty()) {
        add(SiteForm::originAttributes, key.substr(host.size()), hosts);
    }
    return hosts;
}

// Older versions have the address of the page that the server was asked for in, in both texts.
Hosts hostsOfAlternateService(const StateRecord& record) {
    const std::string_view server = serverIn(record.key);
    Hosts hosts = hostsIn(SiteForm::host, hostOfServer(server));
    if (hosts.empty()) {
        return {};
    }
    add(SiteForm::originAttributes, record.key, hosts);
    add(SiteForm::host, hostInstead(record.value, server), hosts);
    add(SiteForm::bytes, record.key, hosts);
    add(SiteForm::bytes, record.value, hosts);
    return hosts;
}

// Between the commas older versions have a digest of the server's certificate.
Hosts hostsOfClientCertificate(const StateRecord& record) {
    const std::string_view host = upTo(record.key, ',');
    if (std::count(record.key.begin(), record.key.end(), ',') != 2) {
        return {};
    }
    Hosts hosts = hostsIn(SiteForm::host, host);
    if (!hosts.empty()) {
        add(SiteForm::originAttributes, record.key.substr(host.size()), hosts);
    }
    return hosts;
}

StateFileStore::StateFileStore(const StateFileRow& row, const fs::path& profile,
                               std::shared_ptr<const FileManager> fileManager)
    : row_(row), path_(profile / row.path), fileManager_(std::move(fileManager)) {}

/** Absent for what Firefox would not have written, such as a link. */
std::optional<Bytes> StateFileStore::readable(const FolderEntry& entry) const {
    const bool isOne = entry.kind == FolderEntry::Kind::file && entry.size <= largestFile;
    return isOne ? std::optional(fileManager_->contents(path_)) : std::nullopt;
}

/** None where nobody knows: of names that are no site's, or more than Firefox writes. */
Hosts StateFileStore::ownersOf(const StateRecord& record) const {
    Hosts hosts = row_.hostsOf(record);
    const bool isKnown = hosts.size() <= mostHosts &&
                         std::any_of(hosts.begin(), hosts.end(), [](const std::string& host) {
                             return Site::ofHost(host).has_value();
                         });
    return isKnown ? hosts : Hosts();
}

std::vector<StateRecord> StateFileStore::recordsOf(std::string_view file) const {
    return row_.valueSize == 0 ? stateRecordsInLines(file)
                               : stateRecordsInSlots(file, row_.valueSize);
}

TraceListing StateFileStore::list(const KnownHosts& /*knownHosts*/) const {
    const auto entry = entryIfThere(*fileManager_, path_);
    if (!entry) {
        return {};
    }
    const auto contents = readable(*entry);
    TraceCollector collector;
    CleanableDataSize unknown = contents ? CleanableDataSize() : sizeOfAll(*fileManager_, path_);
    for (const StateRecord& record : recordsOf(contents ? textOf(*contents) : "")) {
        const Hosts hosts = ownersOf(record);
        const CleanableDataSize size{record.isUnused ? 0 : 1, record.bytes.size()};
        collector.add(row_.kind, hosts, size, record.lastUsed);
        if (hosts.empty() && !record.isUnused) {
            unknown = unknown + size;
        }
    }
    TraceListing listing{collector.takeTraces(), {}};
    if (unknown.itemCount.value > 0) {
        listing.notBySite.push_back({row_.kind, path_, unknown, std::string(row_.meaning)});
    }
    return listing;
}

ForgetOutcome StateFileStore::kept() const {
    return {{{row_.kind, path_, std::string(row_.meaning)}}, true};
}

// A file that lost its last record stays: without it Firefox would take what it knew from the file
// of an older version beside it.
ForgetOutcome StateFileStore::forget(const ForgetRequest& request) const {
    if (!request.takes(row_.kind)) {
        return {};
    }
    removeLeftBeside(*fileManager_, path_);
    const auto entry = entryIfThere(*fileManager_, path_);
    const auto contents =
        entry && !request.sites.isEverything() ? readable(*entry) : std::optional<Bytes>();
    if (!contents && entry && !request.takesMixedOf(row_.kind)) {
        return kept();
    }
    if (!contents) {
        removeAll(*fileManager_, path_);
        return {};
    }
    EntrySelector selector(request, true);
    std::string left;
    for (const StateRecord& record : recordsOf(textOf(*contents))) {
        if (record.isUnused || !selector.selects(ownersOf(record))) {
            left += record.bytes;
        }
    }
    if (left.size() < contents->size()) {
        fileManager_->replace(path_, Bytes(left.begin(), left.end()));
    }
    return selector.hasKeptUnknown() ? kept() : ForgetOutcome();
}

}  // namespace browsersweep
