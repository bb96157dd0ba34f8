#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/home/CurrentUserDirectoryProvider.h"
#include "browsersweep/platform/Accessibility.h"

#include "cli/Appearance.h"

namespace browsersweep::cli {

/** A folder in which a browser keeps data, and whether this program may read it. */
struct Place {
    std::filesystem::path path;
    std::optional<Accessibility> accessibility;  ///< absent where even that cannot be found out
    std::optional<std::string> error;            ///< then why
};

/** What can be reached of one browser. */
struct BrowserPlaces {
    Browser browser = allBrowsers.front();
    std::vector<Place> places;
};

/** What can be reached of the selected browsers. */
struct Diagnosis {
    std::vector<BrowserPlaces> browsers;  ///< in the order of the catalogue

    /** Whether a place is there that cannot be read. */
    bool isAnythingDenied() const noexcept;

    /** Whether the system's privacy protection is what denies one. */
    bool isAnythingProtected() const noexcept;
};

/**
 * Tries the folders of these browsers, Safari's first: it is they that macOS protects. Nothing is
 * read of what they hold.
 */
Diagnosis diagnose(const std::vector<Browser>& browsers,
                   const CurrentUserDirectoryProvider& directories);

/** The diagnosis for people: a table, and what is to be done. */
std::string peopleText(const Diagnosis& diagnosis, const Appearance& appearance);

/** The diagnosis as one JSON object and a newline. */
std::string jsonText(const Diagnosis& diagnosis);

}  // namespace browsersweep::cli
