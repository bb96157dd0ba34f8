#pragma once

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BinaryUserInfo.h"

namespace browsersweep {

class BinaryDecodingContainer;

/** What a type is given to read itself from. It is a light handle on a container. */
class BROWSERSWEEP_EXPORT BinaryDecoder {
public:
    /** A handle on a container, which must outlive it. */
    explicit BinaryDecoder(BinaryDecodingContainer& container) noexcept : container_(&container) {}

    /** What the caller handed to the `BinaryDataDecoder`. */
    const BinaryUserInfo& userInfo() const noexcept;

    /** The container to read from, at the position where the type begins. */
    BinaryDecodingContainer& container() const noexcept { return *container_; }

private:
    BinaryDecodingContainer* container_;
};

}  // namespace browsersweep
