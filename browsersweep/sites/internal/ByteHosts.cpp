#include "browsersweep/sites/internal/ByteHosts.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/SiteForm.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

using Hosts = std::vector<std::string>;

/** Property lists within property lists: real ones have one or two. */
constexpr int maximumDepth = 8;

char inSmall(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isOfHost(char letter) noexcept {
    constexpr std::string_view others = ".-_:[]";
    const char small = inSmall(letter);
    return (small >= 'a' && small <= 'z') || (small >= '0' && small <= '9') ||
           others.find(letter) != std::string_view::npos;
}

/** A text whose letters stand so far apart, with zeros between them. */
class SpreadText {
public:
    SpreadText(std::string_view bytes, std::size_t place, std::size_t distance)
        : bytes_(bytes), place_(place), distance_(distance) {}

    /** The next letter; a zero, which is none, where the text ends. */
    char next() const noexcept {
        const bool isThere = place_ < bytes_.size();
        const bool isSpread = distance_ == 1 || (place_ > 0 && bytes_[place_ - 1] == '\0') ||
                              (place_ + 1 < bytes_.size() && bytes_[place_ + 1] == '\0');
        return isThere && isSpread ? bytes_[place_] : '\0';
    }
    void skip() noexcept { place_ += distance_; }
    bool takes(std::string_view word) noexcept {
        for (const char letter : word) {
            if (inSmall(next()) != letter) {
                return false;
            }
            skip();
        }
        return true;
    }

private:
    std::string_view bytes_;
    std::size_t place_;
    std::size_t distance_;
};

std::string hostAt(std::string_view bytes, std::size_t place, std::size_t distance) {
    SpreadText text(bytes, place, distance);
    if (!text.takes("http")) {
        return {};
    }
    if (inSmall(text.next()) == 's') {
        text.skip();
    }
    if (!text.takes("://")) {
        return {};
    }
    std::string address = "http://";
    for (; isOfHost(text.next()); text.skip()) {
        address += text.next();
    }
    return hostOfAddress(address);
}

void addScanned(std::string_view bytes, Hosts& hosts) {
    for (std::size_t place = bytes.find_first_of("hH"); place != std::string_view::npos;
         place = bytes.find_first_of("hH", place + 1)) {
        for (const std::size_t distance : {std::size_t{1}, std::size_t{2}}) {
            if (std::string host = hostAt(bytes, place, distance); !host.empty()) {
                hosts.push_back(std::move(host));
            }
        }
    }
}

std::optional<PropertyList> propertyListIn(std::string_view bytes) {
    const auto place = placeOfPropertyList(bytes);
    if (!place) {
        return std::nullopt;
    }
    try {
        const Bytes copy(bytes.begin() + static_cast<std::ptrdiff_t>(*place), bytes.end());
        return PropertyList::parse(copy);
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

/** Collects hosts at any depth. */
class HostReader {
public:
    explicit HostReader(NestingBudget& budget) : budget_(budget) {}

    void addBytes(std::string_view bytes, int depth) {
        const auto value = depth < maximumDepth ? propertyListIn(bytes) : std::nullopt;
        if (value) {
            addValue(*value, depth);
        } else {
            addScanned(bytes, hosts_);
        }
    }

    // Recursive: a property list cannot be deeper than its limit.
    void addValue(const PropertyList& value, int depth) {
        budget_.take(1);
        if (const std::string* const text = value.asString()) {
            addText(*text);
        } else if (const Bytes* const data = value.asData()) {
            budget_.take(data->size());
            addBytes(textOf(*data), depth + 1);
        } else if (const PropertyList::Array* const values = value.asArray()) {
            for (const PropertyList& each : *values) {
                addValue(each, depth);
            }
        } else if (const PropertyList::Dictionary* const entries = value.asDictionary()) {
            for (const PropertyList::Entry& entry : *entries) {
                addText(entry.key);
                addValue(entry.value, depth);
            }
        }
    }

    /** Each host once, in their order. */
    Hosts hosts() && {
        std::sort(hosts_.begin(), hosts_.end());
        hosts_.erase(std::unique(hosts_.begin(), hosts_.end()), hosts_.end());
        return std::move(hosts_);
    }

private:
    void addText(std::string_view text) {
        budget_.take(text.size());
        if (std::string host = hostOfAddress(text); !host.empty()) {
            hosts_.push_back(std::move(host));
        }
    }

    NestingBudget& budget_;
    Hosts hosts_;
};

}  // namespace

std::optional<std::size_t> placeOfPropertyList(std::string_view bytes) noexcept {
    for (const std::size_t place : {std::size_t{0}, std::size_t{4}}) {
        if (bytes.size() > place && bytes.substr(place).starts_with("bplist")) {
            return place;
        }
    }
    return std::nullopt;
}

std::vector<std::string> hostsInBytes(std::string_view bytes) {
    NestingBudget budget(NestingBudget::ofValue);
    HostReader reader(budget);
    reader.addBytes(bytes, 0);
    return std::move(reader).hosts();
}

std::vector<std::string> hostsInValue(const PropertyList& value) {
    NestingBudget budget(NestingBudget::ofValue);
    return hostsInValue(value, budget);
}

std::vector<std::string> hostsInValue(const PropertyList& value, NestingBudget& budget) {
    HostReader reader(budget);
    reader.addValue(value, 0);
    return std::move(reader).hosts();
}

}  // namespace browsersweep
