#include "browsersweep/traces/safari/internal/SafariPlaces.h"

#include "browsersweep/profiles/safari/internal/SafariIdentifier.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;

using Place = SafariPlace;

using Folders = std::map<SafariPlace, std::vector<fs::path>>;

Folders ofNamed(const ProfileFolders& folders) {
    return {{Place::safari, {folders.data}},
            {Place::cookies, {folders.cache / "Cookies"}},
            {Place::websiteData, {folders.cache}},
            {Place::webKitCaches, {folders.cache}},
            {Place::originFolders, {folders.cache / "Origins"}}};
}

/** Since Safari runs in a container there are two of each: the container's, and that of before. */
Folders ofEverybody(const Home& home) {
    const fs::path library = home.directoryProvider()->libraryDirectory();
    const fs::path caches = home.directoryProvider()->cachesDirectory();
    const fs::path container = safariContainer(library);
    const fs::path before = library / "WebKit/com.apple.Safari/WebsiteData";
    const fs::path now = container / "WebKit/WebsiteData";
    return {
        {Place::safari, {library / "Safari"}},
        {Place::cookies, {library / "Cookies", container / "Cookies"}},
        {Place::websiteData, {now, before}},
        {Place::webKitCaches, {container / "Caches/WebKit", caches / "com.apple.Safari/WebKit"}},
        {Place::urlCaches, {caches / "com.apple.Safari", container / "Caches/com.apple.Safari"}},
        {Place::originFolders, {now / "Default", before / "Default"}}};
}

}  // namespace

std::vector<fs::path> SafariPlaces::at(SafariPlace place) const {
    const auto found = folders.find(place);
    return found == folders.end() ? std::vector<fs::path>() : found->second;
}

SafariPlaces safariPlaces(const BrowserProfile& profile, const Home& home) {
    const auto ofProfile = profile.folders();
    if (!ofProfile) {
        return {};
    }
    return {profile.isPrimary() ? ofEverybody(home) : ofNamed(*ofProfile),
            home.directoryProvider()->libraryDirectory() / "Safari/Bookmarks.plist"};
}

SafariPlaces sharedSafariPlaces(const Home& home) {
    const fs::path library = home.directoryProvider()->libraryDirectory();
    return {{{Place::container, {safariContainer(library) / "Safari", library / "Safari"}}}, {}};
}

}  // namespace browsersweep
