#include "browsersweep/sites/TraceKind.h"

#include <algorithm>
#include <cstddef>

namespace browsersweep {
namespace {

struct KindRow {
    std::string_view rawValue;
    std::string_view displayName;
};

// clang-format off
constexpr std::array<KindRow, allTraceKinds.size()> kindTable{{
    {"history",        "History"},
    {"downloads",      "Downloads"},
    {"icons",          "Icons"},
    {"cookies",        "Cookies"},
    {"siteStorage",    "Site storage"},
    {"serviceWorkers", "Service workers"},
    {"cachedFiles",    "Cached files"},
    {"openTabs",       "Open tabs"},
    {"formData",       "Form data"},
    {"settings",       "Settings"},
    {"networkState",   "Network state"},
    {"predictions",    "Predictions"},
}};
// clang-format on

const KindRow& rowOf(TraceKind kind) noexcept {
    return kindTable[static_cast<std::size_t>(kind)];
}

}  // namespace

std::string_view rawValue(TraceKind kind) noexcept {
    return rowOf(kind).rawValue;
}

std::string_view displayName(TraceKind kind) noexcept {
    return rowOf(kind).displayName;
}

std::optional<TraceKind> traceKindFromRawValue(std::string_view text) noexcept {
    const auto* const found =
        std::find_if(allTraceKinds.begin(), allTraceKinds.end(),
                     [text](TraceKind kind) { return rawValue(kind) == text; });
    return found == allTraceKinds.end() ? std::nullopt : std::optional(*found);
}

}  // namespace browsersweep
