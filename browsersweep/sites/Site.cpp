#include "browsersweep/sites/Site.h"

#include <algorithm>

#include "browsersweep/sites/internal/PublicSuffixes.h"
#include "browsersweep/sites/internal/Punycode.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {
namespace {

bool isInNumbers(std::string_view host) noexcept {
    // A name's last label begins with a letter; that of an address is a number, or it has a colon.
    const std::string_view last = host.substr(host.rfind('.') + 1);
    return host.find(':') != std::string_view::npos ||
           std::all_of(last.begin(), last.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string siteName(const std::string& host) {
    const bool standsForItself = isInNumbers(host) || host.find('.') == std::string::npos;
    return standsForItself ? host : registrableDomain(host);
}

}  // namespace

std::optional<Site> Site::ofHost(std::string_view host) {
    const std::string plain = plainHost(host);
    return plain.empty() ? std::nullopt : std::optional(Site(siteName(plain)));
}

std::optional<Site> Site::ofAddress(std::string_view address) {
    return ofHost(hostOfAddress(address));
}

std::optional<Site> Site::ofText(std::string_view text) {
    const bool isAddress = text.find("://") != std::string_view::npos;
    const auto hosts = hostsIn(isAddress ? SiteForm::address : SiteForm::host, text);
    return hosts.empty() ? std::nullopt : ofHost(asciiHost(hosts.front()));
}

bool Site::hasHost(std::string_view host) const {
    const auto site = ofHost(host);
    return site && *site == *this;
}

}  // namespace browsersweep
