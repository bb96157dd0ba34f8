#include "cli/JSONValues.h"

namespace browsersweep::cli {

JSON toJSON(const CleanableDataSize::Measurement& measurement) {
    return {{"value", measurement.value}, {"isApproximate", measurement.isApproximate}};
}

JSON toJSON(const CleanableDataSize& size) {
    return {{"itemCount", toJSON(size.itemCount)}, {"byteCount", toJSON(size.byteCount)}};
}

JSON toJSON(const KeepRules& rules) {
    const auto name = [](auto value) { return JSON(rawValue(value)); };
    return {{"file", rules.file.string()},
            {"sites", rules.sites},
            {"browsers", listOf(rules.browsers, name)},
            {"categories", listOf(rules.categories, name)}};
}

JSON toJSON(const std::optional<CleanableDataSize>& size) {
    return size ? toJSON(*size) : JSON(nullptr);
}

}  // namespace browsersweep::cli
