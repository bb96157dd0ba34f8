#include "cli/Appearance.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

bool isSet(const std::optional<std::string>& value) noexcept {
    return value && !value->empty();
}

/** The name of the locale that decides about characters; the first variable that is set wins. */
std::string localeName(const Environment& environment) {
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const auto value = environment(name); isSet(value)) {
            return *value;
        }
    }
    return {};
}

/** "de_DE.UTF-8", "C.utf8", and the "UTF-8" alone that the Mac's terminal sets. */
bool isUTF8(std::string locale) {
    std::transform(locale.begin(), locale.end(), locale.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
}

std::string_view startOf(Style style) noexcept {
    constexpr std::array<std::string_view, 5> starts{"", "\x1b[1m", "\x1b[2m", "\x1b[36m",
                                                     "\x1b[31m"};
    return starts.at(static_cast<std::size_t>(style));
}

}  // namespace

std::optional<std::string> environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

bool understandsEscapeSequences(const Environment& environment) {
    const auto terminal = environment("TERM");
    return isSet(terminal) && *terminal != "dumb";
}

Appearance appearanceOf(bool isTerminal, const Environment& environment) {
    const auto locale = isUTF8(localeName(environment)) ? CharacterSet::utf8 : CharacterSet::ascii;
    return {
        isTerminal && understandsEscapeSequences(environment) && !isSet(environment("NO_COLOR")),
        locale, isTerminal ? locale : CharacterSet::utf8};
}

std::string styled(std::string_view text, Style style, const Appearance& appearance) {
    const auto start = startOf(style);
    if (!appearance.hasStyles || start.empty() || text.empty()) {
        return std::string(text);
    }
    return fmt::format("{}{}\x1b[0m", start, text);
}

}  // namespace browsersweep::cli
