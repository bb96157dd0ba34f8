#include "tests/support/SiteStores.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/GuardedFileManager.h"

namespace browsersweep::tests {
namespace {

namespace fs = std::filesystem;

std::set<Site> sitesOf(const std::set<std::string>& names) {
    std::set<Site> sites;
    for (const std::string& name : names) {
        sites.insert(Site::ofText(name).value());
    }
    return sites;
}

ForgetRequest requestOf(SiteSelection selection, const KnownHosts& hosts) {
    ForgetRequest request;
    request.sites = std::move(selection);
    request.knownHosts = hosts;
    return request;
}

std::string inWords(TraceKind kind, const CleanableDataSize& size) {
    return std::string(rawValue(kind)) + " " + std::to_string(size.itemCount.value);
}

}  // namespace

ChromiumHome::ChromiumHome()
    : folders{folder.makeFolder("Library/Application Support/Chromium/Default"),
              folder.makeFolder("Library/Caches/Chromium/Default")},
      manager(GuardedFileManager::forFixture(folder)) {}

ChromiumHome::~ChromiumHome() = default;

fs::path ChromiumHome::write(std::string_view place, std::string_view contents) const {
    constexpr std::string_view inCache = "cache:";
    const bool isInCache = place.starts_with(inCache);
    const fs::path path =
        isInCache ? cache() / place.substr(inCache.size()) : data() / fs::path(place);
    return folder.write(path.lexically_relative(folder.path()), contents);
}

std::vector<std::string> ChromiumHome::filesWith(std::string_view text) const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
        const bool isFile = entry.is_regular_file();
        if (isFile && readFile(entry.path()).find(text) != std::string::npos) {
            found.push_back(entry.path().lexically_relative(folder.path()).string());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<std::string> ChromiumHome::names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(data())) {
        found.push_back(entry.path().lexically_relative(data()).string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::shared_ptr<const TraceStore> storeAt(const TraceStores& stores, const fs::path& path) {
    const auto found = std::find_if(stores.begin(), stores.end(),
                                    [&](const auto& store) { return store->path() == path; });
    if (found == stores.end()) {
        throw std::runtime_error("no store of " + path.string());
    }
    return *found;
}

ForgetRequest everything(const KnownHosts& hosts) {
    return requestOf(SiteSelection::everything(), hosts);
}

ForgetRequest only(const std::set<std::string>& names, const KnownHosts& hosts) {
    return requestOf(SiteSelection::only(sitesOf(names)), hosts);
}

ForgetRequest allBut(const std::set<std::string>& names, const KnownHosts& hosts) {
    return requestOf(SiteSelection::allBut(sitesOf(names)), hosts);
}

std::vector<std::string> inShort(const TraceListing& listing) {
    std::vector<std::string> lines;
    for (const Trace& trace : listing.bySite) {
        lines.push_back(trace.site.name() + " " + inWords(trace.kind, trace.size));
    }
    for (const MixedTrace& trace : listing.notBySite) {
        lines.push_back("? " + inWords(trace.kind, trace.size));
    }
    return lines;
}

std::set<std::string> hostsOf(const TraceListing& listing) {
    std::set<std::string> hosts;
    for (const Trace& trace : listing.bySite) {
        hosts.insert(trace.hosts.begin(), trace.hosts.end());
    }
    return hosts;
}

}  // namespace browsersweep::tests
