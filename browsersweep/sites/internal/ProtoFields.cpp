#include "browsersweep/sites/internal/ProtoFields.h"

#include <optional>

#include "browsersweep/sites/internal/Varint.h"

namespace browsersweep {
namespace {

enum class Wire : unsigned { number = 0, eightBytes = 1, content = 2, fourBytes = 5 };

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

ProtoMessage protoMessage(std::string_view message) {
    ProtoMessage found;
    while (!message.empty()) {
        const auto field = takeField(message);
        if (!field) {
            return found;
        }
        found.fields.push_back(*field);
    }
    found.isWhole = true;
    return found;
}

std::vector<ProtoField> protoFields(std::string_view message) {
    return protoMessage(message).fields;
}

}  // namespace browsersweep
