#pragma once

#include "browsersweep/Export.h"
#include "browsersweep/binarycoding/BinaryDataEncoderStorage.h"
#include "browsersweep/binarycoding/BinaryUserInfo.h"

namespace browsersweep {

class BinaryEncodingContainer;

/** What a type is given to write itself to. It is a light handle on the output. */
class BROWSERSWEEP_EXPORT BinaryEncoder {
public:
    /** A handle on the output. Both must outlive it. */
    BinaryEncoder(BinaryDataEncoderStorage& storage, const BinaryUserInfo& userInfo) noexcept
        : storage_(&storage), userInfo_(&userInfo) {}

    /** What the caller handed to the `BinaryDataEncoder`. */
    const BinaryUserInfo& userInfo() const noexcept { return *userInfo_; }

    /** A container that appends to the output. */
    BinaryEncodingContainer container() const noexcept;

private:
    BinaryDataEncoderStorage* storage_;
    const BinaryUserInfo* userInfo_;
};

}  // namespace browsersweep
