#include "browsersweep/sites/internal/HostDigests.h"

#include <algorithm>

#include "browsersweep/documents/internal/Base64.h"
#include "browsersweep/documents/internal/Digest.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

/** Each label after a byte with its length, and the root's empty one at the end. */
std::string inWireForm(std::string_view host) {
    std::string result;
    while (!host.empty()) {
        const std::string_view label = host.substr(0, host.find('.'));
        result += static_cast<char>(label.size());
        result += label;
        host.remove_prefix(std::min(label.size() + 1, host.size()));
    }
    return result + '\0';
}

}  // namespace

HostDigests::HostDigests(const KnownHosts& hosts, DigestOf digestOf) {
    for (std::string host : hosts) {
        // What holds for a domain is written once, for all hosts in it.
        for (auto dot = host.find('.'); dot != std::string::npos; dot = host.find('.')) {
            hosts_.emplace(digestOf(host), host);
            host.erase(0, dot + 1);
        }
        if (hosts.contains(host)) {
            hosts_.emplace(digestOf(host), host);
        }
    }
}

std::vector<std::string> HostDigests::hostsOf(std::string_view digest) const {
    const auto found = hosts_.find(std::string(digest));
    return found == hosts_.end() ? std::vector<std::string>() : std::vector{found->second};
}

std::string md5OfHost(const std::string& host) {
    return md5InDigits(host);
}

std::string sha256OfHost(const std::string& host) {
    const auto digest = sha256(inWireForm(host));
    return toBase64(textOf(digest));
}

}  // namespace browsersweep
