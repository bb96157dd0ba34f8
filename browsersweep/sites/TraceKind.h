#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** The kinds of traces that sites leave. */
enum class TraceKind {
    history,         ///< pages that were visited
    downloads,       ///< what was downloaded, and from where; not the downloaded files
    icons,           ///< the icons of pages
    cookies,         ///< cookies
    siteStorage,     ///< what a site's scripts keep: local storage, databases, files
    serviceWorkers,  ///< scripts that a site installed, with the caches that they fill
    cachedFiles,     ///< files that the browser keeps to load pages faster
    openTabs,        ///< open and recently closed tabs and windows
    formData,        ///< what was typed into forms
    settings,        ///< what the user decided for a site: permissions, zoom
    networkState,    ///< what the browser noted about servers
    predictions,     ///< what the browser learnt: engagement, shortcuts, preloading
};

/** Every kind, in the order of declaration. */
inline constexpr std::array allTraceKinds{
    TraceKind::history,     TraceKind::downloads,    TraceKind::icons,
    TraceKind::cookies,     TraceKind::siteStorage,  TraceKind::serviceWorkers,
    TraceKind::cachedFiles, TraceKind::openTabs,     TraceKind::formData,
    TraceKind::settings,    TraceKind::networkState, TraceKind::predictions,
};

/** The name of the case as text, such as "siteStorage". */
BROWSERSWEEP_EXPORT std::string_view rawValue(TraceKind kind) noexcept;

/** The name for people, such as "Site storage". */
BROWSERSWEEP_EXPORT std::string_view displayName(TraceKind kind) noexcept;

/** The kind whose raw value is exactly this text; absent for any other. */
BROWSERSWEEP_EXPORT std::optional<TraceKind> traceKindFromRawValue(std::string_view text) noexcept;

}  // namespace browsersweep
