#include "browsersweep/traces/safari/internal/WebKitText.h"

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/internal/UTF16.h"

namespace browsersweep {
namespace {

constexpr std::uint64_t noText = 0xFFFFFFFF;

std::string fromLatin1(std::string_view letters) {
    std::string text;
    for (const char letter : letters) {
        appendUTF8(text, static_cast<unsigned char>(letter));
    }
    return text;
}

}  // namespace

std::optional<std::string_view> WebKitText::bytes(std::size_t count) noexcept {
    if (count > bytes_.size()) {
        return std::nullopt;
    }
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
}

std::optional<std::uint64_t> WebKitText::number(std::size_t width) noexcept {
    const auto taken = bytes(width);
    if (!taken) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (std::size_t place = width; place > 0; --place) {
        value = value << 8U | static_cast<unsigned char>((*taken)[place - 1]);
    }
    return value;
}

std::optional<std::string> WebKitText::text() {
    const auto length = number(4);
    if (!length || *length == noText) {
        return length ? std::optional<std::string>("") : std::nullopt;
    }
    const auto isLatin1 = number(1);
    if (!isLatin1 || *isLatin1 > 1) {
        return std::nullopt;
    }
    const auto letters = bytes(static_cast<std::size_t>(*length) * (*isLatin1 == 1 ? 1 : 2));
    if (!letters) {
        return std::nullopt;
    }
    if (*isLatin1 == 1) {
        return fromLatin1(*letters);
    }
    const Bytes units(letters->begin(), letters->end());
    return utf8FromUTF16(units, ByteOrder::littleEndian);
}

}  // namespace browsersweep
