#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace browsersweep::cli {

enum class CharacterSet { ascii, utf8 };

/** What a part of the output is, so that it can be made to stand out. */
enum class Style { plain, strong, faint, bar, failure };

/** How a stream shows the output for people. */
struct Appearance {
    bool hasStyles = false;  ///< whether colours and bold type may be used
    /** Of what the program draws itself. */
    CharacterSet drawing = CharacterSet::ascii;
    /** Of names and titles, which are never changed on their way to a file or another program. */
    CharacterSet text = CharacterSet::utf8;
    /** How wide lines may be; 0 where nothing limits them. */
    std::size_t columns = 0;
};

/** Gives the value of an environment variable; absent where it is not set. */
using Environment = std::function<std::optional<std::string>(const char* name)>;

/** The environment of this process. */
std::optional<std::string> environmentVariable(const char* name);

/** Whether a terminal of this environment understands escape sequences. */
bool understandsEscapeSequences(const Environment& environment);

/**
 * Styles are for terminals that understand them, and not for a user who set `NO_COLOR`.
 * Characters outside ASCII are drawn where the locale is one of UTF-8.
 */
Appearance appearanceOf(bool isTerminal, const Environment& environment);

/** The text with the escape sequences of a style around it; unchanged where there are none. */
std::string styled(std::string_view text, Style style, const Appearance& appearance);

}  // namespace browsersweep::cli
