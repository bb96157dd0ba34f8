#include "browsersweep/base/URL.h"

#include <algorithm>

namespace browsersweep {
namespace {

constexpr std::string_view punctuation = "!$&'()*+,-./:;=?@_~[]";

constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

constexpr bool isHexDigit(char c) noexcept {
    return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

constexpr bool isPlain(char c) noexcept {
    return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           punctuation.find(c) != std::string_view::npos;
}

constexpr bool startsWithEscape(std::string_view rest) noexcept {
    return rest.size() >= 3 && rest[0] == '%' && isHexDigit(rest[1]) && isHexDigit(rest[2]);
}

bool isAddress(std::string_view text) noexcept {
    if (text.empty() || std::count(text.begin(), text.end(), '#') > 1) {
        return false;
    }
    while (!text.empty()) {
        if (startsWithEscape(text)) {
            text.remove_prefix(3);
        } else if (isPlain(text.front()) || text.front() == '#') {
            text.remove_prefix(1);
        } else {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (!isAddress(text)) {
        return std::nullopt;
    }
    return URL(std::string(text));
}

}  // namespace browsersweep
