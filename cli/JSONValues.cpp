#include "cli/JSONValues.h"

namespace browsersweep::cli {

JSON toJSON(const CleanableDataSize::Measurement& measurement) {
    return {{"value", measurement.value}, {"isApproximate", measurement.isApproximate}};
}

JSON toJSON(const CleanableDataSize& size) {
    return {{"itemCount", toJSON(size.itemCount)}, {"byteCount", toJSON(size.byteCount)}};
}

JSON toJSON(const std::optional<CleanableDataSize>& size) {
    return size ? toJSON(*size) : JSON(nullptr);
}

}  // namespace browsersweep::cli
