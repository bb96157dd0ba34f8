#include "browsersweep/cleanable/CleanableDataSize.h"

#include "browsersweep/base/FatalError.h"

namespace browsersweep {

CleanableDataSize::Measurement operator+(CleanableDataSize::Measurement a,
                                         CleanableDataSize::Measurement b) noexcept {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a.value, b.value, &sum)) {
        fatalError("a sum of sizes does not fit in 64 bits");
    }
    return {sum, a.isApproximate || b.isApproximate};
}

CleanableDataSize::Measurement operator-(CleanableDataSize::Measurement a,
                                         CleanableDataSize::Measurement b) noexcept {
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(a.value, b.value, &difference)) {
        fatalError("a difference of sizes does not fit in 64 bits");
    }
    return {difference, a.isApproximate || b.isApproximate};
}

CleanableDataSize operator+(const CleanableDataSize& a, const CleanableDataSize& b) noexcept {
    return {a.itemCount + b.itemCount, a.byteCount + b.byteCount};
}

CleanableDataSize operator-(const CleanableDataSize& a, const CleanableDataSize& b) noexcept {
    return {a.itemCount - b.itemCount, a.byteCount - b.byteCount};
}

}  // namespace browsersweep
