#include "browsersweep/profiles/chromium/ChromiumPreferences.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

using Notification = ChromiumPreferences::Notification;

Notification decodeNotification(std::string_view sitePattern, JsonValue value) {
    const JsonValue setting = value.required("setting");
    const JsonValue lastModified = value.required("last_modified");
    // Not used, but an entry with anything but text there is no entry of this format.
    decodingBelow("last_modified", [&] { return lastModified.string(); });
    return {std::string(sitePattern), decodingBelow("setting", [&] { return setting.integer(); })};
}

std::vector<Notification> decodeEntries(JsonValue map) {
    std::vector<Notification> entries;
    for (const auto& member : map.members()) {
        entries.push_back(decodingBelow(
            member.first, [&] { return decodeNotification(member.first, member.second); }));
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
    return {decodeAt(document.root(), keys, decodeEntries)};
}

std::vector<URL> ChromiumPreferences::allowedSites() const {
    std::vector<URL> sites;
    for (const Notification& notification : notifications) {
        if (notification.setting == allowed) {
            appendSites(notification.sitePattern, sites);
        }
    }
    return sites;
}

}  // namespace browsersweep
