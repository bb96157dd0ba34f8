#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BufferedDataSource.h"

namespace browsersweep {

/** A source made of two callbacks. */
class BROWSERSWEEP_EXPORT AnyBufferedDataSource : public BufferedDataSource {
public:
    /** What `read` does: at most that many bytes, or `std::nullopt` at the end. */
    using ReadCallback = std::function<std::optional<std::vector<std::uint8_t>>(std::size_t)>;
    /** What `isAtEnd` does. */
    using IsAtEndCallback = std::function<bool()>;

    /** Neither may be empty. */
    AnyBufferedDataSource(ReadCallback read, IsAtEndCallback isAtEnd);

    /** The callback behind `read`. */
    const ReadCallback& readCallback() const noexcept { return readCallback_; }
    /** The callback behind `isAtEnd`. */
    const IsAtEndCallback& isAtEndCallback() const noexcept { return isAtEndCallback_; }

    std::optional<std::vector<std::uint8_t>> read(std::size_t length) override;
    bool isAtEnd() override;

private:
    ReadCallback readCallback_;
    IsAtEndCallback isAtEndCallback_;
};

}  // namespace browsersweep
