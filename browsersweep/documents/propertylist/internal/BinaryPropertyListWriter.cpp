#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "browsersweep/documents/internal/UTF16.h"
#include "browsersweep/documents/propertylist/internal/BinaryMarkers.h"
#include "browsersweep/documents/propertylist/internal/BinaryPropertyList.h"

namespace browsersweep {
namespace {

void appendBigEndian(Bytes& bytes, std::uint64_t value, std::size_t size) {
    for (std::size_t place = size; place > 0; --place) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (place - 1))));
    }
}

// The format's sizes are powers of two.
std::size_t sizeOf(std::uint64_t value) noexcept {
    if (value <= std::numeric_limits<std::uint8_t>::max()) {
        return 1;
    }
    if (value <= std::numeric_limits<std::uint16_t>::max()) {
        return 2;
    }
    return value <= std::numeric_limits<std::uint32_t>::max() ? 4 : 8;
}

void appendUnsigned(Bytes& bytes, std::uint64_t value) {
    const std::size_t size = sizeOf(value);
    bytes.push_back(marker::of(marker::integer, static_cast<unsigned>(std::countr_zero(size))));
    appendBigEndian(bytes, value, size);
}

void appendMarker(Bytes& bytes, std::uint8_t kind, std::uint64_t count) {
    if (count < marker::countFollows) {
        bytes.push_back(marker::of(kind, static_cast<unsigned>(count)));
        return;
    }
    bytes.push_back(marker::of(kind, marker::countFollows));
    appendUnsigned(bytes, count);
}

Bytes encodedText(const std::string& text) {
    Bytes bytes;
    bool isASCII = true;
    for (const char character : text) {
        isASCII = isASCII && static_cast<unsigned char>(character) < 0x80;
    }
    if (isASCII) {
        appendMarker(bytes, marker::asciiText, text.size());
        bytes.insert(bytes.end(), text.begin(), text.end());
        return bytes;
    }
    const Bytes units = utf16BigEndianFromUTF8(text);
    appendMarker(bytes, marker::utf16Text, units.size() / 2);
    bytes.insert(bytes.end(), units.begin(), units.end());
    return bytes;
}

Bytes encodedInteger(const PropertyList& value) {
    Bytes bytes;
    if (const auto small = value.asInteger()) {
        const auto bits = static_cast<std::uint64_t>(*small);
        appendUnsigned(bytes, bits);
        return bytes;
    }
    // Eight bytes would be read as a negative number.
    bytes.push_back(marker::of(marker::integer, marker::sixteenBytes));
    appendBigEndian(bytes, 0, 8);
    appendBigEndian(bytes, value.asUnsignedInteger().value_or(0), 8);
    return bytes;
}

Bytes encodedDouble(std::uint8_t kind, double value) {
    Bytes bytes{marker::of(kind, marker::eightBytes)};
    appendBigEndian(bytes, std::bit_cast<std::uint64_t>(value), 8);
    return bytes;
}

Bytes encodedUID(std::uint64_t value) {
    const std::size_t size = sizeOf(value);
    Bytes bytes{marker::of(marker::uid, static_cast<unsigned>(size - 1))};
    appendBigEndian(bytes, value, size);
    return bytes;
}

Bytes encodedData(const Bytes& data) {
    Bytes bytes;
    appendMarker(bytes, marker::data, data.size());
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
}

Bytes encodedScalar(const PropertyList& value) {
    switch (value.kind()) {
        case PropertyList::Kind::boolean:
            return {marker::of(marker::simple, value.asBoolean().value_or(false)
                                                   ? marker::trueDetail
                                                   : marker::falseDetail)};
        case PropertyList::Kind::integer:
            return encodedInteger(value);
        case PropertyList::Kind::real:
            return encodedDouble(marker::real, value.asReal().value_or(0));
        case PropertyList::Kind::date:
            return encodedDouble(marker::date, referenceSeconds(value.asDate().value_or(Date{})));
        case PropertyList::Kind::data:
            return encodedData(*value.asData());
        case PropertyList::Kind::uid:
            return encodedUID(value.asUID().value_or(0));
        case PropertyList::Kind::string:
            return encodedText(*value.asString());
        case PropertyList::Kind::array:
        case PropertyList::Kind::dictionary:
            break;
    }
    return {};
}

bool isStoredOnce(PropertyList::Kind kind) noexcept {
    return kind != PropertyList::Kind::boolean && kind != PropertyList::Kind::uid;
}

class Writer {
public:
    Bytes write(const PropertyList& root);

private:
    struct Object {
        std::uint8_t kind = 0;  // of a container; its keys come first among the references
        std::uint64_t count = 0;
        std::vector<std::uint64_t> references;
        Bytes scalar;
    };

    std::uint64_t add(Object object);
    std::uint64_t addScalar(Bytes encoded, bool onlyOnce);
    std::uint64_t flatten(const PropertyList& value);
    std::uint64_t flattenArray(const PropertyList::Array& values);
    std::uint64_t flattenDictionary(const PropertyList::Dictionary& entries);
    void writeObjects();
    void writeTable();

    std::vector<Object> objects_;
    std::unordered_map<std::string, std::uint64_t> storedOnce_;
    std::vector<std::uint64_t> offsets_;
    Bytes bytes_;
};

Bytes Writer::write(const PropertyList& root) {
    flatten(root);
    for (const char character : {'b', 'p', 'l', 'i', 's', 't', '0', '0'}) {
        bytes_.push_back(static_cast<std::uint8_t>(character));
    }
    writeObjects();
    writeTable();
    return std::move(bytes_);
}

std::uint64_t Writer::add(Object object) {
    objects_.push_back(std::move(object));
    return objects_.size() - 1;
}

std::uint64_t Writer::addScalar(Bytes encoded, bool onlyOnce) {
    if (onlyOnce) {
        // Encoded forms are equal exactly where kind and value are.
        const auto [known, isNew] =
            storedOnce_.try_emplace(std::string(encoded.begin(), encoded.end()), objects_.size());
        if (!isNew) {
            return known->second;
        }
    }
    return add({0, 0, {}, std::move(encoded)});
}

// Recursive: a property list cannot be deeper than its limit.
std::uint64_t Writer::flatten(const PropertyList& value) {
    if (const PropertyList::Array* values = value.asArray()) {
        return flattenArray(*values);
    }
    if (const PropertyList::Dictionary* entries = value.asDictionary()) {
        return flattenDictionary(*entries);
    }
    return addScalar(encodedScalar(value), isStoredOnce(value.kind()));
}

std::uint64_t Writer::flattenArray(const PropertyList::Array& values) {
    const std::uint64_t index = add({marker::array, values.size(), {}, {}});
    std::vector<std::uint64_t> references;
    references.reserve(values.size());
    for (const PropertyList& value : values) {
        references.push_back(flatten(value));
    }
    objects_[index].references = std::move(references);
    return index;
}

std::uint64_t Writer::flattenDictionary(const PropertyList::Dictionary& entries) {
    const std::uint64_t index = add({marker::dictionary, entries.size(), {}, {}});
    std::vector<std::uint64_t> references;
    references.reserve(2 * entries.size());
    for (const PropertyList::Entry& entry : entries) {
        references.push_back(addScalar(encodedText(entry.key), true));
    }
    for (const PropertyList::Entry& entry : entries) {
        references.push_back(flatten(entry.value));
    }
    objects_[index].references = std::move(references);
    return index;
}

void Writer::writeObjects() {
    const std::size_t referenceSize = sizeOf(objects_.size());
    for (const Object& object : objects_) {
        offsets_.push_back(bytes_.size());
        if (object.kind == 0) {
            bytes_.insert(bytes_.end(), object.scalar.begin(), object.scalar.end());
            continue;
        }
        appendMarker(bytes_, object.kind, object.count);
        for (const std::uint64_t reference : object.references) {
            appendBigEndian(bytes_, reference, referenceSize);
        }
    }
}

void Writer::writeTable() {
    const std::uint64_t table = bytes_.size();
    const std::size_t offsetSize = sizeOf(table);
    for (const std::uint64_t offset : offsets_) {
        appendBigEndian(bytes_, offset, offsetSize);
    }
    appendBigEndian(bytes_, 0, 6);
    bytes_.push_back(static_cast<std::uint8_t>(offsetSize));
    bytes_.push_back(static_cast<std::uint8_t>(sizeOf(objects_.size())));
    appendBigEndian(bytes_, objects_.size(), 8);
    appendBigEndian(bytes_, 0, 8);
    appendBigEndian(bytes_, table, 8);
}

}  // namespace

Bytes binaryPropertyListData(const PropertyList& value) {
    return Writer().write(value);
}

}  // namespace browsersweep
