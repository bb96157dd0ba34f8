#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** Tells whose a digest is, by trying the hosts that are known and the domains that they are in. */
class HostDigests {
public:
    /** What a store writes in place of a host. */
    using DigestOf = std::string (*)(const std::string& host);

    HostDigests() = default;
    HostDigests(const KnownHosts& hosts, DigestOf digestOf);

    /** The host of a digest, alone; none where it is not known. */
    std::vector<std::string> hostsOf(std::string_view digest) const;

private:
    std::unordered_map<std::string, std::string> hosts_;
};

/** MD5 of the host, in hexadecimal digits: the database of site characteristics. */
std::string md5OfHost(const std::string& host);

/** SHA-256 of the host as it stands in a message of DNS, in base64: the list of HSTS. */
std::string sha256OfHost(const std::string& host);

}  // namespace browsersweep
