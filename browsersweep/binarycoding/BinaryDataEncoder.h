#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "browsersweep/binarycoding/BinaryEncodingContainer.h"

namespace browsersweep {

/** Writes values as bytes. */
class BinaryDataEncoder {
public:
    /** Hands the user info to every type that it lets write itself. */
    explicit BinaryDataEncoder(BinaryUserInfo userInfo = {}) : userInfo_(std::move(userInfo)) {}

    /** What the types that write themselves are given. */
    const BinaryUserInfo& userInfo() const noexcept { return userInfo_; }

    /** The bytes of a value. Throws `BinaryEncodingError`, or what the value throws. */
    template <BinaryEncodable T>
    std::vector<std::uint8_t> encode(const T& value) const {
        BinaryDataEncoderStorage storage;
        BinaryEncoder(storage, userInfo_).container().encode(value);
        return std::move(storage.data);
    }

private:
    BinaryUserInfo userInfo_;
};

}  // namespace browsersweep
