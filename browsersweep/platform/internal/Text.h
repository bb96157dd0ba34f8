#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace browsersweep {

/**
 * Takes the first line off a UTF-8 text, which is absent after the last one. Lines end at every
 * single newline character (U+000A to U+000D, U+0085, U+2028, U+2029): a CR LF pair gives an empty
 * line in between, an empty text one empty line. One by one, since a text can be all lines.
 */
std::string_view takeLine(std::optional<std::string_view>& text) noexcept;

/**
 * The text with its user-perceived characters (extended grapheme clusters) in reverse order: an
 * accent stays on its letter, an emoji family stays together.
 */
std::string reversedCharacters(std::string_view text);

/**
 * Whether the text contains the pattern, letter case aside, under the user's locale. Canonically
 * equal texts are equal; diacritics count; a letter is not found where a combining mark follows it.
 * An empty pattern is never found.
 */
bool localizedCaseInsensitiveContains(std::string_view text, std::string_view pattern);

/** A compiled regular expression in ICU's syntax, without options. */
class RegularExpression {
public:
    /** Compiles a pattern. One that does not compile is a programming error and ends the process.
     */
    explicit RegularExpression(std::string_view pattern);
    RegularExpression(const RegularExpression&) = delete;
    RegularExpression& operator=(const RegularExpression&) = delete;
    /** @{ */
    /** What was moved from may only be assigned to or destroyed. */
    RegularExpression(RegularExpression&&) noexcept;
    RegularExpression& operator=(RegularExpression&&) noexcept;
    /** @} */
    ~RegularExpression();

    /**
     * The first match anywhere in the text: the whole match and then its capture groups, an empty
     * text for a group that took no part. Absent where nothing matches.
     */
    std::optional<std::vector<std::string>> firstMatch(std::string_view text) const;

private:
    struct Implementation;
    std::unique_ptr<const Implementation> implementation_;
};

}  // namespace browsersweep
