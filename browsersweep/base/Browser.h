#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** The supported browsers: the shared identity of a browser throughout the library. */
enum class Browser {
    quenbySecureBrowser,    ///< Chromium family
    tarrowSecureBrowser,    ///< Chromium family
    brave,                  ///< Chromium family
    chromium,               ///< Chromium family
    firefox,                ///< Firefox, a family of its own
    googleChrome,           ///< Chromium family
    microsoftEdge,          ///< Chromium family
    orvo,                   ///< Chromium family
    brellisPrivateBrowser,  ///< Chromium family
    opera,                  ///< Chromium family
    safari,                 ///< Safari, a family of its own
    vivaldi,                ///< Chromium family
    yandexBrowser,          ///< Chromium family
};

/** Every browser, in the order of declaration. */
inline constexpr std::array allBrowsers{
    Browser::quenbySecureBrowser,
    Browser::tarrowSecureBrowser,
    Browser::brave,
    Browser::chromium,
    Browser::firefox,
    Browser::googleChrome,
    Browser::microsoftEdge,
    Browser::orvo,
    Browser::brellisPrivateBrowser,
    Browser::opera,
    Browser::safari,
    Browser::vivaldi,
    Browser::yandexBrowser,
};

/** The name of the case as text, such as "googleChrome". */
BROWSERSWEEP_EXPORT std::string_view rawValue(Browser browser) noexcept;

/** The name for people, such as "Google Chrome". */
BROWSERSWEEP_EXPORT std::string_view displayName(Browser browser) noexcept;

/** The bundle identifier of its application on macOS, such as "com.google.Chrome". */
BROWSERSWEEP_EXPORT std::string_view bundleIdentifier(Browser browser) noexcept;

/**
 * Its data folder below the user's Application Support directory, such as "Google/Chrome", and that
 * of its cache below Caches; empty for Safari, whose data lies elsewhere.
 */
BROWSERSWEEP_EXPORT std::string_view applicationSupportFolder(Browser browser) noexcept;

/** The browser whose raw value is exactly this text, letter case included; absent for any other. */
BROWSERSWEEP_EXPORT std::optional<Browser> browserFromRawValue(std::string_view text) noexcept;

}  // namespace browsersweep
