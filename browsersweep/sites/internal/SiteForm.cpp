#include "browsersweep/sites/internal/SiteForm.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "browsersweep/sites/internal/ByteHosts.h"
#include "browsersweep/sites/internal/MessageHosts.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

char inSmall(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// What cannot stand in a host's name: it is ASCII here, or UTF-8 as it is. "%" would be a zone.
constexpr std::array<bool, 256> forbiddenBytes() {
    std::array<bool, 256> forbidden{};
    for (std::size_t value = 0; value < 0x20; ++value) {
        forbidden[value] = true;
    }
    forbidden[0x7F] = true;
    for (const char letter : std::string_view("/\\?#@<>^|%*,;\"'`{}()&=+$! ")) {
        forbidden[static_cast<unsigned char>(letter)] = true;
    }
    return forbidden;
}

// Asked of each letter of each row's host: a table, not a search.
bool isForbidden(char letter) noexcept {
    static constexpr auto forbidden = forbiddenBytes();
    return forbidden[static_cast<unsigned char>(letter)];
}

std::string_view upTo(std::string_view text, std::string_view anyOf) noexcept {
    const auto* const end =
        std::find_first_of(text.begin(), text.end(), anyOf.begin(), anyOf.end());
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// Without a port: what follows the last colon, unless that stands within brackets.
std::string_view withoutPort(std::string_view host) noexcept {
    if (host.starts_with('[')) {
        return host.substr(0, std::min(host.find(']'), host.size() - 1) + 1);
    }
    // More than one colon: an address in numbers without its brackets.
    return host.find(':') == host.rfind(':') ? upTo(host, ":") : host;
}

constexpr std::array<std::string_view, 5> webSchemes{"http", "https", "ws", "wss", "ftp"};

bool isWebScheme(std::string_view scheme) noexcept {
    return std::any_of(webSchemes.begin(), webSchemes.end(), [scheme](std::string_view known) {
        return std::equal(scheme.begin(), scheme.end(), known.begin(), known.end(),
                          [](char one, char other) { return inSmall(one) == other; });
    });
}

void addHost(Hosts& hosts, std::string host) {
    if (!host.empty() && std::find(hosts.begin(), hosts.end(), host) == hosts.end()) {
        hosts.push_back(std::move(host));
    }
}

Hosts oneHost(std::string host) {
    Hosts hosts;
    addHost(hosts, std::move(host));
    return hosts;
}

std::string unreversed(std::string_view text) {
    std::string host(text);
    std::reverse(host.begin(), host.end());
    return plainHost(host);
}

// The parts after "^" begin with a digit that says what they are: 0 and 1 stand before a site's own
// address, the rest before numbers.
Hosts inStorageKey(std::string_view text) {
    Hosts hosts;
    while (!text.empty()) {
        const std::string_view part = upTo(text, "^");
        const bool isFirst = hosts.empty() && !part.empty() && (part[0] < '0' || part[0] > '9');
        addHost(hosts, hostOfAddress(isFirst || part.empty() ? part : part.substr(1)));
        text.remove_prefix(std::min(part.size() + 1, text.size()));
    }
    return hosts;
}

// Scheme, host and port between low lines. A host has none, the scheme neither.
Hosts inOriginIdentifier(std::string_view text) {
    const auto first = text.find('_');
    const auto last = text.rfind('_');
    if (first == last || !isWebScheme(text.substr(0, first))) {
        return {};
    }
    return oneHost(plainHost(text.substr(first + 1, last - first - 1)));
}

// A pattern without a scheme, "[*.]example.com", and one of an address both name a host.
std::string hostOfPattern(std::string_view pattern) {
    constexpr std::string_view anyHost = "[*.]";
    const auto scheme = pattern.find("://");
    if (scheme != std::string_view::npos && !isWebScheme(pattern.substr(0, scheme))) {
        return {};
    }
    std::string_view host = scheme == std::string_view::npos ? pattern : pattern.substr(scheme + 3);
    if (host.starts_with(anyHost)) {
        host.remove_prefix(anyHost.size());
    }
    return plainHost(withoutPort(upTo(host, "/")));
}

Hosts inContentSettingsKey(std::string_view text) {
    const std::string_view first = upTo(text, ",");
    Hosts hosts = oneHost(hostOfPattern(first));
    if (first.size() < text.size()) {
        addHost(hosts, hostOfPattern(text.substr(first.size() + 1)));
    }
    return hosts;
}

Hosts inWords(std::string_view text) {
    Hosts hosts;
    while (!text.empty()) {
        const std::string_view word = upTo(text, " \n");
        // Numbers and marks stand before the first word, without a space: "1/0/_dk_https://...".
        const auto address = word.find("http");
        addHost(hosts,
                hostOfAddress(address == std::string_view::npos ? word : word.substr(address)));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return hosts;
}

// With the marks that an address in numbers and a partition have, in place of their escapes.
std::string unescaped(std::string_view text) {
    using Escape = std::pair<std::string_view, char>;
    constexpr std::array<Escape, 6> escapes{{
        {"%28", '('},
        {"%29", ')'},
        {"%2C", ','},
        {"%3A", ':'},
        {"%5B", '['},
        {"%5D", ']'},
    }};
    std::string result;
    while (!text.empty()) {
        const auto* const found =
            std::find_if(escapes.begin(), escapes.end(),
                         [text](const Escape& each) { return text.starts_with(each.first); });
        const bool isEscape = found != escapes.end();
        result += isEscape ? found->second : text.front();
        text.remove_prefix(isEscape ? found->first.size() : 1);
    }
    return result;
}

// "(https,example.com)" or "(https,example.com,8443)", escaped as in an address, or a host alone.
std::string hostOfAttribute(std::string_view value) {
    constexpr std::string_view firefoxsOwn = ".mozilla";  // stands for its own pages
    const std::string plain = unescaped(upTo(value, "&^"));
    std::string_view rest = plain;
    if (rest.starts_with('(')) {
        rest.remove_prefix(std::min(upTo(rest, ",").size() + 1, rest.size()));
    }
    const bool isInNumbers = rest.starts_with('[');
    if (isInNumbers && rest.find(']') == std::string_view::npos) {
        return {};
    }
    const std::string host = plainHost(isInNumbers ? withoutPort(rest) : upTo(rest, "%:,)"));
    return host.ends_with(firefoxsOwn) ? std::string() : host;
}

// The site of the page, as a partition of today or by the setting that was there before.
void addPageHost(std::string_view attributes, Hosts& hosts) {
    for (const std::string_view key : {"partitionKey=%28", "firstPartyDomain="}) {
        const auto found = attributes.find(key);
        if (found != std::string_view::npos) {
            const auto value = found + key.find('=') + 1;
            addHost(hosts, hostOfAttribute(attributes.substr(value)));
        }
    }
}

Hosts inFirefoxOrigin(std::string_view text) {
    const std::string_view origin = upTo(text, "^");
    Hosts hosts = oneHost(hostOfAddress(origin));
    addPageHost(text.substr(origin.size()), hosts);
    return hosts;
}

// In a folder's name a plus sign stands for each colon and slash of the origin.
Hosts inFirefoxFolder(std::string_view text) {
    constexpr std::string_view separator = "+++";
    const std::string_view origin = upTo(text, "^");
    const auto begin = origin.find(separator);
    if (begin == std::string_view::npos || !isWebScheme(origin.substr(0, begin))) {
        return {};
    }
    std::string host(origin.substr(begin + separator.size()));
    if (host.starts_with('[')) {
        std::replace(host.begin(), host.end(), '+', ':');
    }
    const std::string_view name = host.starts_with('[') ? withoutPort(host) : upTo(host, "+");
    Hosts hosts = oneHost(plainHost(name));
    addPageHost(text.substr(origin.size()), hosts);
    return hosts;
}

Hosts inAddress(std::string_view text) {
    return oneHost(hostOfAddress(text));
}

Hosts inHost(std::string_view text) {
    return oneHost(plainHost(withoutPort(text)));
}

Hosts inReversedHost(std::string_view text) {
    return oneHost(unreversed(upTo(text, ":")));
}

Hosts inOriginAttributes(std::string_view text) {
    Hosts hosts;
    addPageHost(text, hosts);
    return hosts;
}

}  // namespace

std::string plainHost(std::string_view host) {
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    }
    while (host.starts_with('.')) {
        host.remove_prefix(1);
    }
    while (host.ends_with('.')) {
        host.remove_suffix(1);
    }
    if (std::any_of(host.begin(), host.end(), isForbidden) ||
        host.find("..") != std::string_view::npos) {
        return {};
    }
    std::string result(host);
    std::transform(result.begin(), result.end(), result.begin(), inSmall);
    return result;
}

std::string hostOfAddress(std::string_view address) {
    for (const std::string_view around : {"view-source:", "blob:", "filesystem:"}) {
        if (address.starts_with(around)) {
            address.remove_prefix(around.size());
        }
    }
    const auto colon = address.find("://");
    if (colon == std::string_view::npos || !isWebScheme(address.substr(0, colon))) {
        return {};
    }
    std::string_view authority = upTo(address.substr(colon + 3), "/\\?#");
    const auto at = authority.rfind('@');
    if (at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }
    return plainHost(withoutPort(authority));
}

std::vector<std::string> hostsIn(SiteForm form, std::string_view text) {
    switch (form) {
        case SiteForm::address:
            return inAddress(text);
        case SiteForm::host:
            return inHost(text);
        case SiteForm::reversedHost:
            return inReversedHost(text);
        case SiteForm::storageKey:
            return inStorageKey(text);
        case SiteForm::originIdentifier:
            return inOriginIdentifier(text);
        case SiteForm::contentSettingsKey:
            return inContentSettingsKey(text);
        case SiteForm::networkKey:
            return inWords(text);
        case SiteForm::firefoxOrigin:
            return inFirefoxOrigin(text);
        case SiteForm::firefoxFolder:
            return inFirefoxFolder(text);
        case SiteForm::originAttributes:
            return inOriginAttributes(text);
        case SiteForm::hostOrAddress:
            return text.find("://") == std::string_view::npos ? inHost(text) : inAddress(text);
        case SiteForm::message:
            return hostsInMessage(text);
        case SiteForm::bytes:
            return hostsInBytes(text);
    }
    return {};
}

}  // namespace browsersweep
