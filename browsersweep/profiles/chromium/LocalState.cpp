#include "browsersweep/profiles/chromium/LocalState.h"

#include <algorithm>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

LocalState::InfoCache decodeEntry(std::string_view folder, JsonValue value) {
    constexpr std::string_view consentKey = "is_consented_primary_account";
    const JsonValue consent = value.required(consentKey);
    const JsonValue name = value.required("name");
    return {std::string(folder), decodingBelow(consentKey, [&] { return consent.boolean(); }),
            std::string(decodingBelow("name", [&] { return name.string(); }))};
}

std::vector<LocalState::InfoCache> decodeInfoCache(JsonValue map) {
    std::vector<LocalState::InfoCache> entries;
    for (const auto& member : map.members()) {
        entries.push_back(
            decodingBelow(member.first, [&] { return decodeEntry(member.first, member.second); }));
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

LocalState decodeProfile(JsonValue profile) {
    const JsonValue infoCache = profile.required("info_cache");
    const JsonValue lastActive = profile.required("last_active_profiles");
    return {decodingBelow("info_cache", [&] { return decodeInfoCache(infoCache); }),
            decodingBelow("last_active_profiles", [&] { return decodeFolders(lastActive); })};
}

}  // namespace

LocalState LocalState::decode(BytesView bytes) {
    const JsonDocument document = JsonDocument::parse(bytes);
    const JsonValue profile = document.root().required("profile");
    return decodingBelow("profile", [&] { return decodeProfile(profile); });
}

bool LocalState::isPrimary(const InfoCache& entry) const noexcept {
    return isPrimary(entry, hasConsent());
}

std::vector<bool> LocalState::primaryMarks() const {
    const bool anyConsent = hasConsent();
    std::vector<bool> marks;
    marks.reserve(infoCache.size());
    for (const InfoCache& entry : infoCache) {
        marks.push_back(isPrimary(entry, anyConsent));
    }
    return marks;
}

bool LocalState::hasConsent() const noexcept {
    return std::any_of(infoCache.begin(), infoCache.end(),
                       [](const InfoCache& entry) { return entry.isConsentedPrimaryAccount; });
}

bool LocalState::isPrimary(const InfoCache& entry, bool anyConsent) const noexcept {
    if (anyConsent) {
        return entry.isConsentedPrimaryAccount;
    }
    if (!lastActiveProfiles.empty()) {
        return entry.folder == lastActiveProfiles.front();
    }
    return !infoCache.empty() && entry.folder == infoCache.front().folder;
}

}  // namespace browsersweep
