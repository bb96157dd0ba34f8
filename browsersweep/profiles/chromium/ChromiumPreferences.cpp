#include "browsersweep/profiles/chromium/ChromiumPreferences.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

using Exceptions = ChromiumPreferences::Profile::ContentSettings::CSException;

Exceptions::NotificationValue decodeNotification(JsonValue value) {
    const JsonValue setting = value.required("setting");
    const JsonValue lastModified = value.required("last_modified");
    std::string modified(decodingBelow("last_modified", [&] { return lastModified.string(); }));
    return {decodingBelow("setting", [&] { return setting.integer(); }), std::move(modified)};
}

std::vector<Exceptions::Entry> decodeEntries(JsonValue map) {
    std::vector<Exceptions::Entry> entries;
    for (const auto& [sitePattern, value] : map.members()) {
        entries.emplace_back(sitePattern, decodingBelow(sitePattern, [&notification = value] {
                                 return decodeNotification(notification);
                             }));
    }
    return entries;
}

/** Follows keys from object to object and decodes what is there. */
template <typename Decode>
auto decodeAt(JsonValue value, std::span<const std::string_view> keys, Decode decode)
    -> decltype(decode(value)) {
    if (keys.empty()) {
        return decode(value);
    }
    const JsonValue member = value.required(keys.front());
    return decodingBelow(keys.front(), [&] { return decodeAt(member, keys.subspan(1), decode); });
}

void appendSites(std::string_view sitePattern, std::vector<URL>& sites) {
    while (!sitePattern.empty()) {
        const std::string_view piece = sitePattern.substr(0, sitePattern.find(','));
        sitePattern.remove_prefix(std::min(piece.size() + 1, sitePattern.size()));
        if (piece == "*") {
            continue;
        }
        if (auto site = URL::parse(piece)) {
            sites.push_back(*std::move(site));
        }
    }
}

}  // namespace

ChromiumPreferences ChromiumPreferences::decode(BytesView bytes) {
    constexpr std::array<std::string_view, 4> keys{"profile", "content_settings", "exceptions",
                                                   "notifications"};
    const JsonDocument document = JsonDocument::parse(bytes);
    ChromiumPreferences preferences;
    preferences.profile.contentSettings.exceptions.notifications =
        decodeAt(document.root(), keys, decodeEntries);
    return preferences;
}

std::vector<URL> ChromiumPreferences::allowedSites() const {
    std::vector<URL> sites;
    for (const auto& [sitePattern, value] : profile.contentSettings.exceptions.notifications) {
        if (value.setting == allowed) {
            appendSites(sitePattern, sites);
        }
    }
    return sites;
}

}  // namespace browsersweep
