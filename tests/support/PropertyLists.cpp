#include "tests/support/PropertyLists.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <gtest/gtest.h>

#include "browsersweep/documents/DecodingError.h"

namespace browsersweep::tests {

PropertyList text(std::string value) {
    return PropertyList::string(std::move(value));
}

PropertyList dictionary(PropertyList::Dictionary entries) {
    return PropertyList::dictionary(std::move(entries));
}

PropertyList manyInEachOther(PropertyList value) {
    constexpr int depth = 6;
    constexpr std::size_t count = 64;
    // Some length, so that the end is reached soon.
    PropertyList next = PropertyList::array({std::move(value), text(std::string(65536, 'x'))});
    for (int level = 0; level < depth; ++level) {
        const PropertyList data = PropertyList::data(next.binaryData());
        next = PropertyList::array(PropertyList::Array(count, data));
    }
    return next;
}

void expectCorrupted(BytesView bytes) {
    try {
        PropertyList::parse(bytes);
        const BytesView start = bytes.first(std::min<std::size_t>(bytes.size(), 200));
        ADD_FAILURE() << "accepted: "
                      << testing::PrintToString(std::string(start.begin(), start.end()));
    } catch (const DecodingError& error) {
        EXPECT_EQ(DecodingError::Kind::dataCorrupted, error.kind());
        EXPECT_FALSE(error.description().empty());
    }
}

void expectErrorOrValueForEveryCorruptionOfOneByte(const Bytes& valid) {
    for (std::size_t place = 0; place < valid.size(); ++place) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            Bytes file = valid;
            file[place] = static_cast<std::uint8_t>(byte);
            try {
                const PropertyList value = PropertyList::parse(file);
                EXPECT_EQ(value, PropertyList::parse(value.binaryData())) << place << " " << byte;
            } catch (const DecodingError& error) {
                EXPECT_EQ(DecodingError::Kind::dataCorrupted, error.kind()) << place << " " << byte;
            }
        }
    }
}

}  // namespace browsersweep::tests
