#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BufferedDataSource.h"

namespace browsersweep {

/**
 * Reads a source with the possibility to look ahead. It asks the source for exactly the bytes that
 * it lacks, never for more, so that a source that is shared stays in step. Where the
 * source's bytes lie in memory already they are handed out without being copied.
 */
class BROWSERSWEEP_EXPORT BufferedData {
public:
    /** The capacity where none is given, in bytes. */
    static constexpr std::size_t defaultCapacity = 1024;

    /** What `read(until:)` gives. */
    struct UntilResult {
        std::vector<std::uint8_t> data;  ///< the bytes, without the delimiter
        bool didFindDelimiter = false;   ///< false where the data ended first

        /** Whether all fields are equal. */
        friend bool operator==(const UntilResult&, const UntilResult&) = default;
    };

    /** The capacity is reserved once there is something to keep. */
    explicit BufferedData(std::unique_ptr<BufferedDataSource> reader,
                          std::size_t initialCapacity = defaultCapacity);

    /** The same with a borrowed source, which must outlive it. */
    explicit BufferedData(BufferedDataSource& reader,
                          std::size_t initialCapacity = defaultCapacity) noexcept;
    BufferedData(const BufferedData&) = delete;
    BufferedData& operator=(const BufferedData&) = delete;
    ~BufferedData();

    /** The bytes that were read from the source and not consumed yet. */
    std::span<const std::uint8_t> buffer() const noexcept {
        return std::span<const std::uint8_t>(buffer_).subspan(position_);
    }
    /** The source that it reads. */
    const BufferedDataSource& reader() const noexcept { return *reader_; }

    /** Consumes up to so many bytes; fewer only at the end of the data. */
    std::vector<std::uint8_t> read(std::size_t maxBytes);

    /** Consumes the bytes before a delimiter and the delimiter; without one, all there are. */
    UntilResult readUntil(std::uint8_t delimiter);

    /** As `read`, but nothing is consumed. */
    std::vector<std::uint8_t> peek(std::size_t maxLength);

    /** Whether there is nothing left, neither buffered nor in the source. */
    bool isAtEnd();

    /** As `read`, without a copy: what is returned lives until the next call. */
    std::span<const std::uint8_t> take(std::size_t maxBytes) {
        if (position_ == buffer_.size()) {
            if (const auto piece = reader_->view(maxBytes)) {
                return *piece;
            }
        }
        return takeThroughBuffer(maxBytes);
    }

    /** As `peek`, without a copy: what is returned lives until the next call. */
    std::span<const std::uint8_t> lookAhead(std::size_t maxLength) {
        if (position_ == buffer_.size()) {
            if (const auto piece = reader_->lookAhead(maxLength)) {
                return *piece;
            }
        }
        return lookAheadThroughBuffer(maxLength);
    }

    /** As `readUntil`, without a copy and consuming at most so many bytes. */
    DelimitedBytes takeUntil(std::uint8_t delimiter, std::size_t maxBytes);

    /** Consumes everything there is, without a copy. */
    std::span<const std::uint8_t> takeRemainder();

private:
    std::span<const std::uint8_t> takeThroughBuffer(std::size_t maxBytes);
    std::span<const std::uint8_t> lookAheadThroughBuffer(std::size_t maxLength);
    DelimitedBytes takeUntilThroughBuffer(std::uint8_t delimiter, std::size_t maxBytes);
    void fill(std::size_t count);
    bool append(std::size_t maxBytes);
    void makeRoom();
    std::span<const std::uint8_t> consume(std::size_t count) noexcept;

    std::unique_ptr<BufferedDataSource> ownReader_;
    BufferedDataSource* reader_;
    std::vector<std::uint8_t> buffer_;
    std::size_t position_ = 0;  // consumed from the front of the buffer
    std::size_t initialCapacity_;
};

}  // namespace browsersweep
