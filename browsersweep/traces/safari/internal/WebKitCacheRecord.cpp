#include "browsersweep/traces/safari/internal/WebKitCacheRecord.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/traces/safari/internal/WebKitText.h"

namespace browsersweep {
namespace {

constexpr std::size_t digestSize = 20;

/** Digests of the key and of its partition, the time, and digest and size of the head. */
constexpr std::size_t beforeBody = 2 * digestSize + 8 + digestSize + 8;

std::string inHexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value / digits.size()];
        text += digits[value % digits.size()];
    }
    return text;
}

}  // namespace

std::vector<std::string> WebKitCacheRecord::hosts() const {
    std::vector<std::string> found = hostsIn(SiteForm::address, identifier);
    for (std::string& host : hostsIn(SiteForm::hostOrAddress, partition)) {
        if (std::find(found.begin(), found.end(), host) == found.end()) {
            found.push_back(std::move(host));
        }
    }
    return found;
}

std::optional<WebKitCacheRecord> webKitCacheRecord(std::string_view bytes) {
    constexpr std::size_t versionSize = 4;
    WebKitText text(bytes);
    if (!text.number(versionSize)) {
        return std::nullopt;
    }
    std::array<std::optional<std::string>, 4> key;  // the last is a range of bytes
    for (auto& part : key) {
        part = text.text();
        if (!part) {
            return std::nullopt;
        }
    }
    const auto head = text.bytes(beforeBody);
    const auto body = text.bytes(digestSize);
    if (!head || !body) {
        return std::nullopt;
    }
    return WebKitCacheRecord{*key[0], *key[1], *key[2], inHexadecimal(*body)};
}

}  // namespace browsersweep
