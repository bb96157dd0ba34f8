#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "browsersweep/Export.h"

namespace browsersweep {

/** Bytes up to a delimiter, which is taken too and is not part of them. */
struct DelimitedBytes {
    std::span<const std::uint8_t> data;  ///< the bytes, without the delimiter
    bool didFindDelimiter = false;       ///< false where the limit or the end came first
};

/** Where a `BufferedData` gets its bytes from, in order and once. */
class BROWSERSWEEP_EXPORT BufferedDataSource {
public:
    BufferedDataSource() = default;
    BufferedDataSource(const BufferedDataSource&) = delete;
    BufferedDataSource& operator=(const BufferedDataSource&) = delete;
    virtual ~BufferedDataSource();

    /**
     * The next bytes, at most `length` of them. Nothing (or no byte) means that there are no more.
     * An exception passes through to the reader.
     */
    virtual std::optional<std::vector<std::uint8_t>> read(std::size_t length) = 0;

    /** Whether no more bytes will come. */
    virtual bool isAtEnd() = 0;

    /**
     * The same as `read` without copying, for sources whose bytes lie in memory already. What is
     * returned lives until the next call. Nothing means that this source cannot do so, or not now;
     * no byte was taken then. The default cannot.
     */
    virtual std::optional<std::span<const std::uint8_t>> view(std::size_t length);

    /**
     * Takes the bytes up to a delimiter and the delimiter, at most `length` bytes in all, without
     * copying. As `view`.
     */
    virtual std::optional<DelimitedBytes> viewUntil(std::uint8_t delimiter, std::size_t length);

    /** As `view`, but the bytes are not taken: they come again. */
    virtual std::optional<std::span<const std::uint8_t>> lookAhead(std::size_t length);
};

}  // namespace browsersweep
