#include "cli/Doctor.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>

#include "cli/ErrorText.h"
#include "cli/JSONValues.h"
#include "cli/Table.h"
#include "cli/Text.h"
#include "cli/Wrapping.h"

namespace browsersweep::cli {
namespace {

std::vector<std::filesystem::path> pathsOf(Browser browser,
                                           const CurrentUserDirectoryProvider& directories) {
    const auto library = directories.libraryDirectory();
    if (browser == Browser::safari) {
        return {library / "Safari", library / "Containers/com.apple.Safari",
                directories.cachesDirectory() / "com.apple.Safari", library / "Cookies"};
    }
    const std::filesystem::path folder = applicationSupportFolder(browser);
    return {directories.applicationSupportDirectory() / folder,
            directories.cachesDirectory() / folder};
}

Place placeAt(const std::filesystem::path& path) {
    try {
        return {path, accessibility(path), std::nullopt};
    } catch (const std::filesystem::filesystem_error& error) {
        return {path, std::nullopt, errorText(error)};
    }
}

bool isDenied(const Place& place) noexcept {
    return place.accessibility != Accessibility::reachable &&
           place.accessibility != Accessibility::missing;
}

bool isProtected(const Place& place) noexcept {
    return place.accessibility == Accessibility::deniedByPrivacyProtection;
}

bool isAny(const std::vector<BrowserPlaces>& browsers,
           const std::function<bool(const Place&)>& isMeant) {
    return std::any_of(browsers.begin(), browsers.end(), [&isMeant](const BrowserPlaces& browser) {
        return std::any_of(browser.places.begin(), browser.places.end(), isMeant);
    });
}

std::string shortWord(const Place& place) {
    if (!place.accessibility) {
        return *place.error;
    }
    switch (*place.accessibility) {
        case Accessibility::reachable:
            return "can be reached";
        case Accessibility::missing:
            return "is not there";
        case Accessibility::deniedByPermissions:
            return "denied by its permissions";
        case Accessibility::deniedByPrivacyProtection:
            return "protected by macOS";
    }
    return {};
}

JSON toJSON(const Place& place) {
    return {{"path", place.path.string()},
            {"state", place.accessibility ? JSON(rawValue(*place.accessibility)) : JSON(nullptr)},
            {"error", place.error ? JSON(*place.error) : JSON(nullptr)}};
}

JSON toJSON(const BrowserPlaces& browser) {
    JSON places = JSON::array();
    for (const Place& place : browser.places) {
        places.push_back(toJSON(place));
    }
    return {{"browser", rawValue(browser.browser)}, {"places", std::move(places)}};
}

/** What is to be done, each thing once. */
std::vector<std::string_view> adviceOf(const Diagnosis& diagnosis) {
    std::vector<std::string_view> advice;
    for (const Accessibility state :
         {Accessibility::deniedByPrivacyProtection, Accessibility::deniedByPermissions}) {
        if (isAny(diagnosis.browsers,
                  [state](const Place& place) { return place.accessibility == state; })) {
            advice.push_back(explanation(state));
        }
    }
    return advice;
}

}  // namespace

bool Diagnosis::isAnythingDenied() const noexcept {
    return isAny(browsers, isDenied);
}

bool Diagnosis::isAnythingProtected() const noexcept {
    return isAny(browsers, isProtected);
}

Diagnosis diagnose(const std::vector<Browser>& browsers,
                   const CurrentUserDirectoryProvider& directories) {
    std::vector<Browser> order = browsers;
    std::stable_partition(order.begin(), order.end(),
                          [](Browser browser) { return browser == Browser::safari; });
    Diagnosis diagnosis;
    for (const Browser browser : order) {
        BrowserPlaces found{browser, {}};
        for (const auto& path : pathsOf(browser, directories)) {
            found.places.push_back(placeAt(path));
        }
        diagnosis.browsers.push_back(std::move(found));
    }
    std::sort(diagnosis.browsers.begin(), diagnosis.browsers.end(),
              [](const auto& a, const auto& b) { return a.browser < b.browser; });
    return diagnosis;
}

std::string peopleText(const Diagnosis& diagnosis, const Appearance& appearance) {
    constexpr std::size_t leastName = 8;
    constexpr std::size_t leastPath = 12;
    Table table({{"Browser", Alignment::left, leastName},
                 {"Folder", Alignment::left, leastPath, 0, Cut::front},
                 {"State", Alignment::left, leastName}});
    for (const BrowserPlaces& browser : diagnosis.browsers) {
        for (const Place& place : browser.places) {
            table.addRow({std::string(displayName(browser.browser)), printable(place.path.string()),
                          shortWord(place)});
        }
    }
    std::string text = table.text(appearance);
    const auto advice = adviceOf(diagnosis);
    for (const std::string_view sentence : advice) {
        text.append("\n").append(wrapped(sentence, appearance.columns));
    }
    return advice.empty() && !diagnosis.isAnythingDenied()
               ? text + "\nEverything that is there can be reached.\n"
               : text;
}

std::string jsonText(const Diagnosis& diagnosis) {
    JSON browsers = JSON::array();
    for (const BrowserPlaces& browser : diagnosis.browsers) {
        browsers.push_back(toJSON(browser));
    }
    return documentText({{"needsFullDiskAccess", diagnosis.isAnythingProtected()},
                         {"browsers", std::move(browsers)}});
}

}  // namespace browsersweep::cli
