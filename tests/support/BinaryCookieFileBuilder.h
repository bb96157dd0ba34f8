#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/base/Bytes.h"

namespace browsersweep::tests {

/** Puts bytes together. It shares no code with what it is there to test. */
class ByteText {
public:
    ByteText& little(std::uint64_t value, unsigned width) {
        for (unsigned index = 0; index < width; ++index) {
            // Wider than the value are only runs of zeros.
            data_.push_back(index < sizeof value ? static_cast<std::uint8_t>(value >> (8 * index))
                                                 : std::uint8_t{0});
        }
        return *this;
    }
    ByteText& big(std::uint64_t value, unsigned width) {
        for (unsigned index = width; index > 0; --index) {
            data_.push_back(static_cast<std::uint8_t>(value >> (8 * (index - 1))));
        }
        return *this;
    }
    ByteText& text(std::string_view text) {
        data_.insert(data_.end(), text.begin(), text.end());
        return *this;
    }
    ByteText& raw(const Bytes& bytes) {
        data_.insert(data_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    const Bytes& data() const noexcept { return data_; }

private:
    Bytes data_;
};

/** A cookie record with its four usual strings, tightly packed. */
struct CookieRecord {
    std::string url = "example.org";
    std::string name = "id";
    std::string path = "/";
    std::string value = "42";
    double expiration = 700000000.5;
    double creation = 600000000.25;
    std::uint32_t version = 1;
    std::uint32_t flags = 5;
    std::uint32_t portMarker = 0;
    std::uint16_t port = 0;  ///< written where the marker is 1

    std::uint32_t size() const { return head() + length(url, name, path, value); }

    Bytes data() const {
        ByteText record;
        record.little(size(), 4).little(version, 4).little(flags, 4).little(portMarker, 4);
        record.little(head(), 4).little(head() + length(url), 4);
        record.little(head() + length(url, name), 4).little(head() + length(url, name, path), 4);
        record.little(0, 4).little(0, 4);
        record.little(std::bit_cast<std::uint64_t>(expiration), 8);
        record.little(std::bit_cast<std::uint64_t>(creation), 8);
        if (portMarker == 1) {
            record.little(port, 2);
        }
        for (const std::string& text : {url, name, path, value}) {
            record.text(text).little(0, 1);
        }
        return record.data();
    }

private:
    std::uint32_t head() const noexcept { return portMarker == 1 ? 58 : 56; }

    template <typename... Texts>
    static std::uint32_t length(const Texts&... texts) {
        return static_cast<std::uint32_t>((0 + ... + (texts.size() + 1)));
    }
};

/** A page of finished records. */
inline Bytes cookiePage(const std::vector<Bytes>& records) {
    ByteText page;
    page.little(0x00010000, 4).little(records.size(), 4);
    std::uint64_t offset = 12 + 4 * records.size();
    for (const Bytes& record : records) {
        page.little(offset, 4);
        offset += record.size();
    }
    page.little(0, 4);
    for (const Bytes& record : records) {
        page.raw(record);
    }
    return page.data();
}

/** The binary property list of an empty dictionary. */
inline Bytes emptyDictionary() {
    return ByteText()
        .text("bplist00")
        .little(0xD0, 1)
        .little(8, 1)
        .little(0, 6)
        .little(1, 1)
        .little(1, 1)
        .big(1, 8)
        .big(0, 8)
        .big(9, 8)
        .data();
}

/** A whole file of finished pages. */
inline Bytes cookieFile(const std::vector<Bytes>& pages, const Bytes& metadata) {
    ByteText file;
    file.text("cook").big(pages.size(), 4);
    std::uint32_t sum = 0;
    for (const Bytes& page : pages) {
        file.big(page.size(), 4);
        for (std::size_t index = 0; index < page.size(); index += 4) {
            sum += page[index];
        }
    }
    for (const Bytes& page : pages) {
        file.raw(page);
    }
    return file.big(sum, 4).big(0x071720050000004B, 8).raw(metadata).data();
}

}  // namespace browsersweep::tests
