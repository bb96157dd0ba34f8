#include "browsersweep/sites/internal/ProtoFields.h"

#include <optional>

namespace browsersweep {
namespace {

enum class Wire : unsigned { number = 0, eightBytes = 1, content = 2, fourBytes = 5 };

std::optional<std::uint64_t> takeVarint(std::string_view& text) noexcept {
    constexpr unsigned bitsPerByte = 7;
    constexpr unsigned more = 0x80;
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64 && !text.empty(); shift += bitsPerByte) {
        const auto byte = static_cast<unsigned char>(text.front());
        text.remove_prefix(1);
        number |= std::uint64_t{byte & (more - 1)} << shift;
        if (byte < more) {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> takeFixed(std::string_view& text, std::size_t size) noexcept {
    if (text.size() < size) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (std::size_t place = size; place > 0; --place) {
        number = number << 8U | static_cast<unsigned char>(text[place - 1]);
    }
    text.remove_prefix(size);
    return number;
}

std::optional<ProtoField> takeField(std::string_view& text) noexcept {
    const auto tag = takeVarint(text);
    if (!tag) {
        return std::nullopt;
    }
    constexpr unsigned kindBits = 3;
    const auto wire = static_cast<Wire>(*tag & ((1U << kindBits) - 1));
    std::optional<std::uint64_t> value;
    if (wire == Wire::number || wire == Wire::content) {
        value = takeVarint(text);
    } else if (wire == Wire::eightBytes || wire == Wire::fourBytes) {
        value = takeFixed(text, wire == Wire::eightBytes ? 8 : 4);
    }
    ProtoField field{static_cast<unsigned>(*tag >> kindBits), value.value_or(0), {}};
    if (value && wire == Wire::content) {
        if (*value > text.size()) {
            return std::nullopt;
        }
        field.content = text.substr(0, static_cast<std::size_t>(*value));
        text.remove_prefix(field.content.size());
        field.value = 0;
    }
    return value ? std::optional(field) : std::nullopt;
}

}  // namespace

std::vector<ProtoField> protoFields(std::string_view message) {
    std::vector<ProtoField> fields;
    while (!message.empty()) {
        const auto field = takeField(message);
        if (!field) {
            break;
        }
        fields.push_back(*field);
    }
    return fields;
}

}  // namespace browsersweep
