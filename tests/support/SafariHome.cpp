#include "tests/support/SafariHome.h"

#include <algorithm>
#include <utility>

#include "browsersweep/profiles/safari/SafariProfile.h"

#include "tests/support/GuardedFileManager.h"
#include "tests/support/SiteStores.h"

namespace browsersweep::tests {
namespace {

std::string origin(const std::string& scheme, const std::string& host, unsigned port) {
    std::string record = webKitText(scheme) + webKitText(host);
    if (port == 0) {
        return record + '\0';
    }
    record += '\1';
    record += static_cast<char>(port & 0xFFU);
    return record + static_cast<char>(port >> 8U);
}

}  // namespace

SafariHome::SafariHome() : SafariHome(SystemServices::isolated()) {}

SafariHome::SafariHome(SystemServices services)
    : manager(GuardedFileManager::forFixture(folder)),
      home(Home(manager).withServices(std::move(services))) {
    folder.makeFolder("tmp");
    folder.makeFolder("Library");
}

std::filesystem::path SafariHome::at(std::string_view place) const {
    constexpr std::string_view inContainer = "container:";
    return place.starts_with(inContainer) ? container() / place.substr(inContainer.size())
                                          : library() / place;
}

std::filesystem::path SafariHome::write(std::string_view place, std::string_view contents) const {
    return folder.write(at(place).lexically_relative(folder.path()), contents);
}

TraceStores SafariHome::stores() const {
    TraceStores all = traceStores(SafariProfile(home), home);
    const TraceStores shared = traceStores(Browser::safari, home);
    all.insert(all.end(), shared.begin(), shared.end());
    return all;
}

std::shared_ptr<const TraceStore> SafariHome::store(std::string_view place) const {
    return storeAt(stores(), at(place));
}

std::vector<std::string> SafariHome::names(std::string_view place) const {
    std::vector<std::string> found;
    const auto root = at(place);
    if (!std::filesystem::exists(root)) {
        return found;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        found.push_back(entry.path().lexically_relative(root).string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string webKitText(std::string_view text) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(text.size() >> shift);
    }
    return (bytes + '\1').append(text);
}

std::string originRecord(const std::string& pageHost, const std::string& frameHost, unsigned port,
                         const std::string& scheme) {
    return origin(scheme, pageHost, port) + origin(scheme, frameHost, port);
}

}  // namespace browsersweep::tests
