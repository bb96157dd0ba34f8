#include "browsersweep/documents/propertylist/internal/BinaryPropertyList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/documents/propertylist/internal/BinaryMarkers.h"

namespace browsersweep {
namespace {

constexpr std::string_view magic = "bplist0";
constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

void requireReadableDepth(std::size_t depth) {
    if (depth > PropertyList::maximumDepth) {
        throw DecodingError::dataCorrupted("a binary property list is nested too deeply");
    }
}

std::uint64_t bigEndian(BytesView bytes) noexcept {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = (value << 8) | byte;
    }
    return value;
}

struct Trailer {
    std::size_t offsetSize;
    std::size_t referenceSize;
    std::uint64_t objectCount;
    std::uint64_t topObject;
    std::uint64_t offsetTable;
};

Trailer readTrailer(BytesView bytes) {
    if (bytes.size() < headerSize + 1 + trailerSize) {
        throw DecodingError::dataCorrupted("a binary property list is cut off");
    }
    const BytesView tail = bytes.last(trailerSize);
    const Trailer trailer{tail[6], tail[7], bigEndian(tail.subspan(8, 8)),
                          bigEndian(tail.subspan(16, 8)), bigEndian(tail.subspan(24, 8))};
    const std::uint64_t tableEnd = bytes.size() - trailerSize;
    const bool sizesFit = trailer.offsetSize >= 1 && trailer.offsetSize <= 8 &&
                          trailer.referenceSize >= 1 && trailer.referenceSize <= 8;
    const bool tableFits =
        sizesFit && trailer.offsetTable > headerSize && trailer.offsetTable < tableEnd &&
        (tableEnd - trailer.offsetTable) % trailer.offsetSize == 0 &&
        (tableEnd - trailer.offsetTable) / trailer.offsetSize == trailer.objectCount;
    if (!tableFits || trailer.topObject >= trailer.objectCount) {
        throw DecodingError::dataCorrupted("the trailer of a binary property list is wrong");
    }
    return trailer;
}

/** What a value would be if each reference to a shared object were a copy of its own. */
struct Expansion {
    std::uint64_t depth = 0;
    std::uint64_t values = 1;
    std::uint64_t bytes = 0;
};

class Reader {
public:
    explicit Reader(BytesView bytes)
        : bytes_(bytes),
          trailer_(readTrailer(bytes)),
          unreadBytes_(trailer_.offsetTable - headerSize),
          keyBytes_(maximumBytes()),
          objects_(static_cast<std::size_t>(trailer_.objectCount)) {}

    PropertyList read() { return *object(trailer_.topObject, 0).value; }

private:
    struct Object {
        std::optional<PropertyList> value;
        Expansion expansion;
        bool isOpen = false;
    };

    // Both allow for everything that a writer without shared containers can produce, and leave
    // room for some sharing.
    std::uint64_t maximumValues() const noexcept { return bytes_.size() + (1U << 20); }
    std::uint64_t maximumBytes() const noexcept { return 16 * bytes_.size() + (16U << 20); }

    const Object& object(std::uint64_t index, std::size_t depth);
    PropertyList parse(std::uint64_t offset, std::size_t depth, Expansion& expansion);
    PropertyList parseArray(std::uint64_t count, std::size_t depth, Expansion& expansion);
    PropertyList parseDictionary(std::uint64_t count, std::size_t depth, Expansion& expansion);
    PropertyList parseSimple(unsigned detail) const;
    PropertyList parseInteger(unsigned detail);
    PropertyList parseReal(unsigned detail);
    PropertyList parseDate(unsigned detail);
    PropertyList parseUID(unsigned detail);
    PropertyList parseData(std::uint64_t count, Expansion& expansion);
    PropertyList parseASCII(std::uint64_t count, Expansion& expansion);
    PropertyList parseUTF16(std::uint64_t count, Expansion& expansion);

    BytesView take(std::uint64_t count);
    std::uint64_t takeCount(unsigned detail);
    std::vector<std::uint64_t> takeReferences(std::uint64_t count);
    std::string key(std::uint64_t index, std::size_t depth);
    void add(Expansion& whole, const Expansion& part) const;

    BytesView bytes_;
    Trailer trailer_;
    // Objects must not overlap, or a small file could be read as a huge one.
    std::uint64_t unreadBytes_;
    std::uint64_t keyBytes_;
    std::uint64_t position_ = 0;
    std::vector<Object> objects_;
};

const Reader::Object& Reader::object(std::uint64_t index, std::size_t depth) {
    if (index >= trailer_.objectCount) {
        throw DecodingError::dataCorrupted(
            "a binary property list refers to an object that it does not have");
    }
    Object& found = objects_[static_cast<std::size_t>(index)];
    if (found.value) {
        return found;
    }
    if (found.isOpen) {
        throw DecodingError::dataCorrupted(
            "a binary property list holds an object that contains itself");
    }
    found.isOpen = true;
    const std::uint64_t place = trailer_.offsetTable + index * trailer_.offsetSize;
    const std::uint64_t offset =
        bigEndian(bytes_.subspan(static_cast<std::size_t>(place), trailer_.offsetSize));
    if (offset < headerSize || offset >= trailer_.offsetTable) {
        throw DecodingError::dataCorrupted(
            "an object of a binary property list lies outside of it");
    }
    found.value = parse(offset, depth, found.expansion);
    return found;
}

PropertyList Reader::parse(std::uint64_t offset, std::size_t depth, Expansion& expansion) {
    position_ = offset;
    const std::uint8_t first = take(1)[0];
    const unsigned detail = first & 0x0FU;
    switch (first >> 4) {
        case marker::simple:
            return parseSimple(detail);
        case marker::integer:
            return parseInteger(detail);
        case marker::real:
            return parseReal(detail);
        case marker::date:
            return parseDate(detail);
        case marker::data:
            return parseData(takeCount(detail), expansion);
        case marker::asciiText:
            return parseASCII(takeCount(detail), expansion);
        case marker::utf16Text:
            return parseUTF16(takeCount(detail), expansion);
        case marker::uid:
            return parseUID(detail);
        case marker::array:
            return parseArray(takeCount(detail), depth, expansion);
        case marker::dictionary:
            return parseDictionary(takeCount(detail), depth, expansion);
        default:
            throw DecodingError::dataCorrupted(
                "a binary property list holds an object of an unknown kind");
    }
}

BytesView Reader::take(std::uint64_t count) {
    if (count > trailer_.offsetTable - position_) {
        throw DecodingError::dataCorrupted("an object of a binary property list is cut off");
    }
    if (count > unreadBytes_) {
        throw DecodingError::dataCorrupted("objects of a binary property list overlap");
    }
    const BytesView taken =
        bytes_.subspan(static_cast<std::size_t>(position_), static_cast<std::size_t>(count));
    position_ += count;
    unreadBytes_ -= count;
    return taken;
}

std::uint64_t Reader::takeCount(unsigned detail) {
    if (detail != marker::countFollows) {
        return detail;
    }
    const std::uint8_t first = take(1)[0];
    const unsigned exponent = first & 0x0FU;
    if (first >> 4 != marker::integer || exponent > marker::eightBytes) {
        throw DecodingError::dataCorrupted("a count in a binary property list is no integer");
    }
    return bigEndian(take(std::uint64_t{1} << exponent));
}

std::vector<std::uint64_t> Reader::takeReferences(std::uint64_t count) {
    // Divided rather than multiplied: the product could wrap around.
    if (count > (trailer_.offsetTable - position_) / trailer_.referenceSize) {
        throw DecodingError::dataCorrupted("a container of a binary property list is cut off");
    }
    const BytesView taken = take(count * trailer_.referenceSize);
    std::vector<std::uint64_t> references(static_cast<std::size_t>(count));
    for (std::size_t index = 0; index < references.size(); ++index) {
        references[index] =
            bigEndian(taken.subspan(index * trailer_.referenceSize, trailer_.referenceSize));
    }
    return references;
}

void Reader::add(Expansion& whole, const Expansion& part) const {
    whole.depth = std::max(whole.depth, part.depth + 1);
    whole.values += part.values;
    whole.bytes += part.bytes;
    requireReadableDepth(whole.depth);
    if (whole.values > maximumValues() || whole.bytes > maximumBytes()) {
        throw DecodingError::dataCorrupted(
            "the references of a binary property list add up to too much");
    }
}

std::string Reader::key(std::uint64_t index, std::size_t depth) {
    const std::string* text = object(index, depth).value->asString();
    if (text == nullptr) {
        throw DecodingError::dataCorrupted("a key of a binary property list is no text");
    }
    if (text->size() > keyBytes_) {
        throw DecodingError::dataCorrupted(
            "the references of a binary property list add up to too much");
    }
    keyBytes_ -= text->size();
    return *text;
}

PropertyList Reader::parseArray(std::uint64_t count, std::size_t depth, Expansion& expansion) {
    expansion.depth = 1;
    requireReadableDepth(depth + 1);
    PropertyList::Array values;
    const std::vector<std::uint64_t> references = takeReferences(count);
    values.reserve(references.size());
    for (const std::uint64_t reference : references) {
        const Object& element = object(reference, depth + 1);
        add(expansion, element.expansion);
        values.push_back(*element.value);
    }
    return PropertyList::array(std::move(values));
}

PropertyList Reader::parseDictionary(std::uint64_t count, std::size_t depth, Expansion& expansion) {
    expansion.depth = 1;
    requireReadableDepth(depth + 1);
    PropertyList::Dictionary entries;
    const std::vector<std::uint64_t> keys = takeReferences(count);
    const std::vector<std::uint64_t> values = takeReferences(count);
    entries.reserve(keys.size());
    for (std::size_t index = 0; index < keys.size(); ++index) {
        std::string text = key(keys[index], depth + 1);
        const Object& element = object(values[index], depth + 1);
        add(expansion, element.expansion);
        add(expansion, Expansion{0, 1, text.size()});
        entries.push_back({std::move(text), *element.value});
    }
    return PropertyList::dictionary(std::move(entries));
}

PropertyList Reader::parseSimple(unsigned detail) const {
    if (detail != marker::falseDetail && detail != marker::trueDetail) {
        throw DecodingError::dataCorrupted(
            "a binary property list holds an object of an unknown kind");
    }
    return PropertyList::boolean(detail == marker::trueDetail);
}

PropertyList Reader::parseInteger(unsigned detail) {
    if (detail > marker::sixteenBytes) {
        throw DecodingError::dataCorrupted(
            "an integer of a binary property list has an unknown length");
    }
    if (detail < marker::sixteenBytes) {
        // Only the longest of these can be negative; shorter ones are unsigned.
        const std::uint64_t value = bigEndian(take(std::uint64_t{1} << detail));
        return PropertyList::integer(static_cast<std::int64_t>(value));
    }
    const std::uint64_t high = bigEndian(take(8));
    const std::uint64_t low = bigEndian(take(8));
    const bool isNegative = (low >> 63) != 0 && high == ~std::uint64_t{0};
    if (isNegative) {
        return PropertyList::integer(static_cast<std::int64_t>(low));
    }
    if (high != 0) {
        throw DecodingError::dataCorrupted(
            "an integer of a binary property list needs more than 64 bits");
    }
    return PropertyList::unsignedInteger(low);
}

PropertyList Reader::parseReal(unsigned detail) {
    if (detail == 2) {
        const auto bits = static_cast<std::uint32_t>(bigEndian(take(4)));
        return PropertyList::real(static_cast<double>(std::bit_cast<float>(bits)));
    }
    if (detail != marker::eightBytes) {
        throw DecodingError::dataCorrupted(
            "a real of a binary property list has an unknown length");
    }
    return PropertyList::real(std::bit_cast<double>(bigEndian(take(8))));
}

PropertyList Reader::parseDate(unsigned detail) {
    if (detail != marker::eightBytes) {
        throw DecodingError::dataCorrupted(
            "a date of a binary property list has an unknown length");
    }
    return PropertyList::date(dateFromReferenceSeconds(std::bit_cast<double>(bigEndian(take(8)))));
}

PropertyList Reader::parseUID(unsigned detail) {
    if (detail > 7) {
        throw DecodingError::dataCorrupted(
            "a reference of a binary property list needs more than 64 bits");
    }
    return PropertyList::uid(bigEndian(take(detail + 1)));
}

PropertyList Reader::parseData(std::uint64_t count, Expansion& expansion) {
    const BytesView taken = take(count);
    expansion.bytes = taken.size();
    return PropertyList::data(Bytes(taken.begin(), taken.end()));
}

PropertyList Reader::parseASCII(std::uint64_t count, Expansion& expansion) {
    const BytesView taken = take(count);
    expansion.bytes = taken.size();
    if (std::any_of(taken.begin(), taken.end(), [](std::uint8_t byte) { return byte > 0x7F; })) {
        throw DecodingError::dataCorrupted("an ASCII text of a binary property list is not ASCII");
    }
    return PropertyList::string(std::string(taken.begin(), taken.end()));
}

PropertyList Reader::parseUTF16(std::uint64_t count, Expansion& expansion) {
    if (count > bytes_.size() / 2) {
        throw DecodingError::dataCorrupted("an object of a binary property list is cut off");
    }
    std::optional<std::string> text = utf8FromUTF16(take(count * 2), ByteOrder::bigEndian);
    if (!text) {
        throw DecodingError::dataCorrupted("a text of a binary property list is no UTF-16");
    }
    expansion.bytes = text->size();
    return PropertyList::string(std::move(*text));
}

}  // namespace

bool isBinaryPropertyList(BytesView bytes) noexcept {
    return bytes.size() >= headerSize && std::equal(magic.begin(), magic.end(), bytes.begin());
}

PropertyList parseBinaryPropertyList(BytesView bytes) {
    if (!isBinaryPropertyList(bytes)) {
        throw DecodingError::dataCorrupted("the bytes are no binary property list");
    }
    return Reader(bytes).read();
}

}  // namespace browsersweep
