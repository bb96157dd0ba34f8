#include "browsersweep/traces/firefox/internal/MozLz4.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <lz4.h>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/sites/internal/StoreFiles.h"

namespace browsersweep {
namespace {

constexpr std::array<std::uint8_t, 8> magic{'m', 'o', 'z', 'L', 'z', '4', '0', '\0'};
constexpr std::size_t headSize = magic.size() + sizeof(std::uint32_t);

// A byte of LZ4 stands for 255 at the most: a length beyond that is a lie, and no reason to ask for
// memory. No session is as large as the second bound.
constexpr std::size_t mostOfAByte = 255;
constexpr std::size_t longest = std::size_t{64} << 20;

std::size_t lengthIn(BytesView file) noexcept {
    std::size_t length = 0;
    for (std::size_t place = headSize; place > magic.size(); --place) {
        length = length << 8U | file[place - 1];
    }
    return length;
}

char* asText(Bytes& bytes, std::size_t begin) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the same bytes, for LZ4
    return reinterpret_cast<char*>(bytes.data()) + begin;
}

}  // namespace

Bytes decodedMozLz4(BytesView file) {
    const auto refused = DecodingError::dataCorrupted("not a sound compressed file of Firefox");
    if (file.size() < headSize || file.size() > longest ||
        !std::equal(magic.begin(), magic.end(), file.begin())) {
        throw refused;
    }
    const BytesView block = file.subspan(headSize);
    const std::size_t length = lengthIn(file);
    if (length > std::min(longest, mostOfAByte * block.size())) {
        throw refused;
    }
    Bytes contents(length);
    const int written =
        LZ4_decompress_safe(textOf(block).data(), asText(contents, 0),
                            static_cast<int>(block.size()), static_cast<int>(length));
    if (written < 0 || static_cast<std::size_t>(written) != length) {
        throw refused;
    }
    return contents;
}

Bytes encodedMozLz4(std::string_view contents) {
    if (contents.size() > LZ4_MAX_INPUT_SIZE) {
        throw DecodingError::dataCorrupted("more than a compressed file of Firefox can hold");
    }
    const int length = static_cast<int>(contents.size());
    const int most = LZ4_compressBound(length);
    Bytes file(magic.begin(), magic.end());
    for (unsigned shift = 0; shift < 32; shift += 8) {
        file.push_back(static_cast<std::uint8_t>(contents.size() >> shift));
    }
    file.resize(headSize + static_cast<std::size_t>(most));
    const int written = LZ4_compress_default(contents.data(), asText(file, headSize), length, most);
    file.resize(headSize + static_cast<std::size_t>(written));
    return file;
}

}  // namespace browsersweep
