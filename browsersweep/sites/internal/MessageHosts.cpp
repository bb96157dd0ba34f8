#include "browsersweep/sites/internal/MessageHosts.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>

#include "browsersweep/sites/internal/SiteForm.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

/** Real messages are flat; a hostile one could be as deep as it is long. */
constexpr int maximumDepth = 16;

/** What follows a field's number says how long the field is. */
enum class Wire : std::uint64_t { number = 0, eightBytes = 1, sized = 2, fourBytes = 5 };

std::optional<std::uint64_t> takeNumber(std::string_view& bytes) noexcept {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64 && !bytes.empty(); shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        number |= std::uint64_t{byte & 0x7Fu} << shift;
        if (byte < 0x80) {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> takeBytes(std::string_view& bytes, std::uint64_t count) noexcept {
    if (count > bytes.size()) {
        return std::nullopt;
    }
    const std::string_view taken = bytes.substr(0, static_cast<std::size_t>(count));
    bytes.remove_prefix(taken.size());
    return taken;
}

/** The contents of the next field; those of a number are of no interest, and empty. */
std::optional<std::string_view> takeField(std::string_view& bytes) noexcept {
    const auto key = takeNumber(bytes);
    switch (static_cast<Wire>(key.value_or(3) & 7)) {
        case Wire::number:
            return takeNumber(bytes) ? std::optional(std::string_view()) : std::nullopt;
        case Wire::eightBytes:
            return takeBytes(bytes, 8);
        case Wire::fourBytes:
            return takeBytes(bytes, 4);
        case Wire::sized:
            if (const auto size = takeNumber(bytes)) {
                return takeBytes(bytes, *size);
            }
            return std::nullopt;
    }
    return std::nullopt;
}

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
    Found found;
    while (const auto field = takeField(bytes)) {
        Hosts hosts = inText(*field);
        if (hosts.empty() && depth < maximumDepth) {
            Found inner = in(*field, depth + 1);
            hosts = inner.isWhole ? std::move(inner.hosts) : Hosts();
        }
        std::move(hosts.begin(), hosts.end(), std::back_inserter(found.hosts));
    }
    found.isWhole = bytes.empty();
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
