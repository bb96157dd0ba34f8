#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/Appearance.h"

namespace browsersweep::cli {

/** One character read from the front of a text. */
struct Character {
    char32_t codePoint = 0;
    std::size_t length = 0;  ///< in bytes
    bool isValid = false;    ///< false for a byte that begins no well-formed UTF-8 sequence
};

/** Reads the character that stands at a place of a UTF-8 text. */
Character characterAt(std::string_view text, std::size_t position) noexcept;

/** Whether the text is well-formed UTF-8. */
bool isWellFormed(std::string_view text) noexcept;

/** Whether a character is one of Unicode's control characters. */
bool isControlCharacter(char32_t codePoint) noexcept;

/**
 * The text as a terminal can show it on one line: what is no UTF-8, and every character that
 * would move the cursor or turn the text around, becomes a replacement character. Names and titles
 * come from files that anybody may have written.
 */
std::string printable(std::string_view text);

/**
 * A JSON document with an escape for every character that would act on a terminal or turn the text
 * around where the document is looked at. Its values stay the same.
 */
std::string escapedDocument(std::string json);

/** The printable text with a question mark for each visible character outside ASCII. */
std::string asciiOf(std::string_view text);

/** How many columns of a terminal the text takes: two for wide characters, none for accents. */
std::size_t displayWidth(std::string_view text) noexcept;

/** The text, or as much of it as fits with a sign that something is missing. */
std::string shortened(std::string_view text, std::size_t width, CharacterSet characters);

/** The same, cut at its front: of a path the end tells more. */
std::string shortenedInFront(std::string_view text, std::size_t width, CharacterSet characters);

}  // namespace browsersweep::cli
