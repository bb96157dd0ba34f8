#include "browsersweep/binarycoding/AnyBufferedDataSource.h"

#include <utility>

namespace browsersweep {

AnyBufferedDataSource::AnyBufferedDataSource(ReadCallback read, IsAtEndCallback isAtEnd)
    : readCallback_(std::move(read)), isAtEndCallback_(std::move(isAtEnd)) {}

std::optional<std::vector<std::uint8_t>> AnyBufferedDataSource::read(std::size_t length) {
    return readCallback_(length);
}

bool AnyBufferedDataSource::isAtEnd() {
    return isAtEndCallback_();
}

}  // namespace browsersweep
