#include "browsersweep/profiles/chromium/LocalState.h"

#include <algorithm>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

using Profile = LocalState::Profile;

Profile::InfoCache decodeInfo(JsonValue value) {
    constexpr std::string_view consentKey = "is_consented_primary_account";
    const JsonValue consent = value.required(consentKey);
    const JsonValue name = value.required("name");
    return {decodingBelow(consentKey, [&] { return consent.boolean(); }),
            std::string(decodingBelow("name", [&] { return name.string(); }))};
}

std::vector<Profile::Entry> decodeInfoCache(JsonValue map) {
    std::vector<Profile::Entry> entries;
    for (const auto& [folder, value] : map.members()) {
        entries.emplace_back(folder,
                             decodingBelow(folder, [&info = value] { return decodeInfo(info); }));
    }
    return entries;
}

std::vector<std::string> decodeFolders(JsonValue list) {
    std::vector<std::string> folders;
    for (const JsonValue element : list.elements()) {
        folders.emplace_back(element.string());
    }
    return folders;
}

Profile decodeProfile(JsonValue profile) {
    const JsonValue infoCache = profile.required("info_cache");
    const JsonValue lastActive = profile.required("last_active_profiles");
    return {decodingBelow("info_cache", [&] { return decodeInfoCache(infoCache); }),
            decodingBelow("last_active_profiles", [&] { return decodeFolders(lastActive); })};
}

}  // namespace

LocalState LocalState::decode(BytesView bytes) {
    const JsonDocument document = JsonDocument::parse(bytes);
    const JsonValue profile = document.root().required("profile");
    return {decodingBelow("profile", [&] { return decodeProfile(profile); })};
}

bool LocalState::Profile::isPrimary(const Entry& entry) const noexcept {
    return isPrimary(entry, hasConsent());
}

std::vector<bool> LocalState::Profile::primaryMarks() const {
    const bool anyConsent = hasConsent();
    std::vector<bool> marks;
    marks.reserve(infoCache.size());
    for (const Entry& entry : infoCache) {
        marks.push_back(isPrimary(entry, anyConsent));
    }
    return marks;
}

bool LocalState::Profile::hasConsent() const noexcept {
    return std::any_of(infoCache.begin(), infoCache.end(),
                       [](const Entry& entry) { return entry.second.isConsentedPrimaryAccount; });
}

bool LocalState::Profile::isPrimary(const Entry& entry, bool anyConsent) const noexcept {
    if (anyConsent) {
        return entry.second.isConsentedPrimaryAccount;
    }
    if (!lastActiveProfiles.empty()) {
        return entry.first == lastActiveProfiles.front();
    }
    return !infoCache.empty() && entry.first == infoCache.front().first;
}

}  // namespace browsersweep
