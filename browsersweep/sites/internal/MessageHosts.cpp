#include "browsersweep/sites/internal/MessageHosts.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "browsersweep/sites/internal/ProtoFields.h"
#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

/** Real messages are flat; a hostile one could be as deep as it is long. */
constexpr int maximumDepth = 16;

bool isText(std::string_view bytes) noexcept {
    return std::none_of(bytes.begin(), bytes.end(),
                        [](char each) { return static_cast<unsigned char>(each) < 0x20; });
}

// A word alone is no host here: only an address may name one of a single label.
Hosts inText(std::string_view text) {
    if (!isText(text)) {
        return {};
    }
    const bool isAddress = text.find("://") != std::string_view::npos;
    const bool mayNameHost = isAddress || text.find('.') != std::string_view::npos;
    return mayNameHost ? hostsIn(SiteForm::hostOrAddress, text) : Hosts();
}

struct Found {
    Hosts hosts;
    bool isWhole = false;  ///< every byte made sense
};

// A field that names no host may be a message in turn; a text is none, for its bytes make no sense
// as fields up to the last one.
Found in(std::string_view bytes, int depth) {
    const ProtoMessage message = protoMessage(bytes);
    Found found{{}, message.isWhole};
    for (const ProtoField& field : message.fields) {
        Hosts hosts = inText(field.content);
        if (hosts.empty() && !field.content.empty() && depth < maximumDepth) {
            Found inner = in(field.content, depth + 1);
            hosts = inner.isWhole ? std::move(inner.hosts) : Hosts();
        }
        std::move(hosts.begin(), hosts.end(), std::back_inserter(found.hosts));
    }
    return found;
}

}  // namespace

std::vector<std::string> hostsInMessage(std::string_view bytes) {
    Hosts hosts = in(bytes, 0).hosts;
    std::sort(hosts.begin(), hosts.end());
    hosts.erase(std::unique(hosts.begin(), hosts.end()), hosts.end());
    return hosts;
}

}  // namespace browsersweep
