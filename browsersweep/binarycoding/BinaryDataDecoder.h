#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>

#include "browsersweep/binarycoding/BinaryDecodingContainer.h"
#include "browsersweep/binarycoding/BufferedData.h"
#include "browsersweep/binarycoding/DataBufferedDataSource.h"

namespace browsersweep {

/** Reads values from bytes. Bytes that a value leaves unread are no error. */
class BinaryDataDecoder {
public:
    /** Hands the user info to every type that it lets read itself. */
    explicit BinaryDataDecoder(BinaryUserInfo userInfo = {}) : userInfo_(std::move(userInfo)) {}

    /** What the types that read themselves are given. */
    const BinaryUserInfo& userInfo() const noexcept { return userInfo_; }

    /** Reads one value from bytes in memory: a buffer, a list. */
    template <BinaryDecodable T>
    T decode(std::span<const std::uint8_t> data) const {
        const std::unique_ptr<BufferedData> buffered = bufferedData(data);
        return decode<T>(*buffered);
    }

    /** Reads one value from the position where the data stands. */
    template <BinaryDecodable T>
    T decode(BufferedData& data) const {
        BinaryDecodingContainer container(data, userInfo_);
        return container.decode<T>();
    }

    /** The bytes as a `BufferedData`. They are not copied and must outlive it. */
    static std::unique_ptr<BufferedData> bufferedData(std::span<const std::uint8_t> data) {
        return std::make_unique<BufferedData>(std::make_unique<DataBufferedDataSource>(data));
    }

private:
    BinaryUserInfo userInfo_;
};

}  // namespace browsersweep
