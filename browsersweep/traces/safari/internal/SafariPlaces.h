#pragma once

#include <filesystem>
#include <map>
#include <vector>

#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/** The places where Safari and WebKit keep their files. */
enum class SafariPlace {
    safari,         ///< "Safari" in Library, or a named profile's folder in it
    cookies,        ///< the system's cookies, or those of a named profile
    websiteData,    ///< what scripts keep
    webKitCaches,   ///< WebKit's caches; of a named profile the same as above
    urlCaches,      ///< the cache of the system's loader; of no named profile
    container,      ///< "Safari" in Safari's container
    originFolders,  ///< a folder for each site that scripts keep something of
};

/** Where these are. */
struct SafariPlaces {
    /** One may be in several folders, of older and newer versions, or in none. */
    std::map<SafariPlace, std::vector<std::filesystem::path>> folders;
    std::filesystem::path bookmarks;  ///< the one file that all profiles share

    /** The folders of one of them. */
    std::vector<std::filesystem::path> at(SafariPlace place) const;
};

/** The places of a profile: of the one that every user has, or of a named one. */
SafariPlaces safariPlaces(const BrowserProfile& profile, const Home& home);

/** The places that all profiles share. */
SafariPlaces sharedSafariPlaces(const Home& home);

}  // namespace browsersweep
