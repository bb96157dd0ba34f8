#pragma once

#include <cstdint>
#include <vector>

namespace browsersweep {

/** The output of one encoding, which all its containers append to. */
struct BinaryDataEncoderStorage {
    BinaryDataEncoderStorage() = default;
    BinaryDataEncoderStorage(const BinaryDataEncoderStorage&) = delete;
    BinaryDataEncoderStorage& operator=(const BinaryDataEncoderStorage&) = delete;
    ~BinaryDataEncoderStorage() = default;

    std::vector<std::uint8_t> data;  ///< all bytes written so far
};

}  // namespace browsersweep
