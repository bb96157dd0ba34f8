#include "cli/JSONValues.h"

#include <utility>

#include "cli/Text.h"

namespace browsersweep::cli {

std::string indentedText(const JSON& value) {
    constexpr int indentation = 2;
    return value.dump(indentation, ' ', false, JSON::error_handler_t::replace);
}

std::string documentText(const JSON& document) {
    std::string text = indentedText(document);
    text += '\n';
    return escapedDocument(std::move(text));
}

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
