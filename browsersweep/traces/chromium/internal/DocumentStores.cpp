#include "browsersweep/traces/chromium/internal/DocumentStores.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/documents/internal/Base64.h"
#include "browsersweep/sites/internal/DocumentStore.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"
#include "browsersweep/traces/chromium/internal/ChromiumDate.h"

namespace browsersweep {
namespace {

using Member = JsonEditor::Member;

/** What the browser noted by itself; every other kind of exception is what a person decided. */
constexpr std::array<std::string_view, 22> notedKinds{
    "app_banner",
    "client_hints",
    "cookie_controls_metadata",
    "durable_storage",
    "fedcm_idp_registration",
    "fedcm_idp_signin",
    "formfill_metadata",
    "http_allowed",
    "https_enforced",
    "important_site_info",
    "media_engagement",
    "notification_interactions",
    "permission_autoblocking_data",
    "reduced_accept_language",
    "site_engagement",
    "ssl_cert_decisions",
    "storage_access",
    "suspicious_notification_ids",
    "top_level_3pcd_origin_trial",
    "top_level_storage_access",
    "unused_site_permissions",
    "webid_auto_reauthn",
};

TraceKind kindOfException(std::string_view name) {
    const bool isNoted = std::find(notedKinds.begin(), notedKinds.end(), name) != notedKinds.end();
    return isNoted ? TraceKind::predictions : TraceKind::settings;
}

TraceKind settings(std::string_view /*key*/) {
    return TraceKind::settings;
}

TraceKind networkState(std::string_view /*key*/) {
    return TraceKind::networkState;
}

std::optional<Date> lastModified(const JsonEditor& document, const Member& entry) {
    for (const Member& member : document.members(entry.value, "last_modified")) {
        const std::string digits = document.string(member.value);
        std::uint64_t microseconds = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), microseconds);
        return dateFromChromium(microseconds);
    }
    return std::nullopt;
}

/** "https://www.example.com:443,*"; "*,*" is a decision about all sites. */
DocumentEntry exceptionIn(const JsonEditor& document, const Member& entry,
                          const HostDigests& /*digests*/) {
    auto hosts = hostsIn(SiteForm::contentSettingsKey, entry.key);
    const bool stays = hosts.empty();
    return {std::move(hosts), stays, lastModified(document, entry)};
}

/** "www.example.com" */
DocumentEntry zoomIn(const JsonEditor& document, const Member& entry,
                     const HostDigests& /*digests*/) {
    auto hosts = hostsIn(SiteForm::host, entry.key);
    const bool stays = hosts.empty();
    return {std::move(hosts), stays, lastModified(document, entry)};
}

/** The top sites that a text in base64 holds, between lengths and zeros. */
std::vector<std::string> hostsInKey(std::string_view base64) {
    std::string text = fromBase64(base64);
    constexpr auto isControl = [](char letter) {
        return static_cast<unsigned char>(letter) < ' ' || letter == '\x7F';
    };
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return hostsIn(SiteForm::networkKey, text);
}

/** Every host that an entry names, in members of its members as well. */
void addHosts(const JsonEditor& document, const Member& member, std::string_view key,
              std::vector<std::string>& hosts) {
    const std::string text = document.string(member.value);
    std::vector<std::string> found;
    if (key == "anonymization") {
        found = hostsInKey(text);
    } else if (text.find("://") != std::string::npos) {
        found = hostsIn(SiteForm::address, text);
    } else if (key == "host") {
        found = hostsIn(SiteForm::host, text);
    }
    hosts.insert(hosts.end(), found.begin(), found.end());
    for (const Member& below : document.members(member.value)) {
        addHosts(document, below, below.key.empty() ? key : std::string_view(below.key), hosts);
    }
}

DocumentEntry serverIn(const JsonEditor& document, const Member& entry,
                       const HostDigests& /*digests*/) {
    DocumentEntry result;
    addHosts(document, entry, {}, result.hosts);
    return result;
}

/** Whose digest stands under "host". */
DocumentEntry promiseIn(const JsonEditor& document, const Member& entry,
                        const HostDigests& digests) {
    DocumentEntry result;
    for (const Member& member : document.members(entry.value, "host")) {
        result.hosts = digests.hostsOf(document.string(member.value));
    }
    for (const Member& member : document.members(entry.value, "sts_observed")) {
        const std::string seconds(document.text(member.value));
        result.lastUsed = dateFrom1970Seconds(std::strtod(seconds.c_str(), nullptr));
    }
    return result;
}

DocumentForm preferences() {
    return {"Preferences",
            {TraceKind::settings, TraceKind::predictions},
            {{"profile/content_settings/exceptions/*", kindOfException, exceptionIn},
             {"partition/per_host_zoom_levels/*", settings, zoomIn}},
            false,
            nullptr,
            {}};
}

DocumentForm networkPersistentState() {
    return {"Network Persistent State",
            {TraceKind::networkState},
            {{"net/http_server_properties/servers", networkState, serverIn},
             {"net/http_server_properties/broken_alternative_services", networkState, serverIn},
             {"net/http_server_properties/quic_servers", networkState, serverIn}},
            true,
            nullptr,
            {}};
}

DocumentForm transportSecurity() {
    return {"TransportSecurity",
            {TraceKind::networkState},
            {{"sts", networkState, promiseIn}},
            true,
            sha256OfHost,
            "sites that must be loaded over HTTPS, as hashes of hosts that no other store names; "
            "without them the first request goes over HTTP"};
}

}  // namespace

TraceStores documentStores(const ProfileFolders& folders,
                           const std::shared_ptr<const FileManager>& fileManager) {
    TraceStores stores;
    for (const auto form : {preferences, networkPersistentState, transportSecurity}) {
        stores.push_back(std::make_shared<DocumentStore>(form(), folders.data, fileManager));
    }
    return stores;
}

}  // namespace browsersweep
