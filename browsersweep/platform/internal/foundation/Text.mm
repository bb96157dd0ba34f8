#include "browsersweep/platform/internal/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "browsersweep/base/FatalError.h"
#include "browsersweep/platform/internal/foundation/FoundationText.h"
#include "browsersweep/platform/internal/foundation/Ownership.h"

namespace browsersweep {
namespace {

struct CharacterRange {
    char32_t first;
    char32_t last;
};

// The system's composed sequences are those of Unicode's extended grapheme clusters but for these
// characters, which it leaves alone.

/** The zero width non-joiner and the vowel signs AM of Thai and Lao: part of what stands before. */
constexpr std::array<CharacterRange, 3> appended{
    {{0x200C, 0x200C}, {0x0E33, 0x0E33}, {0x0EB3, 0x0EB3}}};

/** Signs of numbers, verses and clusters, from Arabic to Kawi: part of what follows. */
constexpr std::array<CharacterRange, 15> prepended{{
    {0x0600, 0x0605},
    {0x06DD, 0x06DD},
    {0x070F, 0x070F},
    {0x0890, 0x0891},
    {0x08E2, 0x08E2},
    {0x0D4E, 0x0D4E},
    {0x110BD, 0x110BD},
    {0x110CD, 0x110CD},
    {0x111C2, 0x111C3},
    {0x1193F, 0x1193F},
    {0x11941, 0x11941},
    {0x11A3A, 0x11A3A},
    {0x11A84, 0x11A89},
    {0x11D46, 0x11D46},
    {0x11F02, 0x11F02},
}};

template <std::size_t count>
bool isIn(const std::array<CharacterRange, count>& ranges, char32_t character) noexcept {
    return std::any_of(ranges.begin(), ranges.end(), [character](const CharacterRange& range) {
        return range.first <= character && character <= range.last;
    });
}
/** The code point that begins at an index. */
char32_t codePointAt(NSString* string, NSUInteger index) {
    const char32_t unit = [string characterAtIndex:index];
    if (unit < 0xD800 || unit > 0xDBFF || index + 1 == [string length]) {
        return unit;
    }
    return 0x10000 + ((unit - 0xD800) << 10) + ([string characterAtIndex:index + 1] - 0xDC00U);
}

/** Nothing is joined to a control character but a line feed to its carriage return. */
bool isControl(char32_t character) noexcept {
    return character < 0x20 || (0x7F <= character && character <= 0x9F) || character == 0x2028 ||
           character == 0x2029;
}

bool areOneCharacter(NSString* string, NSRange before, NSRange after) {
    const char32_t left = codePointAt(string, before.location);
    const char32_t right = codePointAt(string, after.location);
    if (isControl(left) || isControl(right)) {
        return left == '\r' && right == '\n';
    }
    return isIn(appended, right) || isIn(prepended, left);
}

/** The user-perceived character that ends at an index, which must not be 0. */
NSRange characterBefore(NSString* string, NSUInteger end) {
    NSRange character = [string rangeOfComposedCharacterSequenceAtIndex:end - 1];
    while (character.location > 0) {
        const NSRange before =
            [string rangeOfComposedCharacterSequenceAtIndex:character.location - 1];
        if (!areOneCharacter(string, before, character)) {
            break;
        }
        character = NSMakeRange(before.location, before.length + character.length);
    }
    return character;
}

}  // namespace

std::string reversedCharacters(std::string_view text) {
    @autoreleasepool {
        NSString* string = foundationString(text);
        NSMutableString* reversed = [NSMutableString stringWithCapacity:[string length]];
        for (NSUInteger end = [string length]; end > 0;) {
            const NSRange character = characterBefore(string, end);
            [reversed appendString:[string substringWithRange:character]];
            end = character.location;
        }
        return utf8(reversed);
    }
}

bool localizedCaseInsensitiveContains(std::string_view text, std::string_view pattern) {
    @autoreleasepool {
        NSString* wanted = foundationString(pattern);
        return [wanted length] > 0 &&
               [foundationString(text) localizedCaseInsensitiveContainsString:wanted];
    }
}

struct RegularExpression::Implementation {
    explicit Implementation(NSRegularExpression* compiled) : expression(compiled) {}

    Retained<NSRegularExpression*> expression;
};

RegularExpression::RegularExpression(std::string_view pattern) {
    @autoreleasepool {
        NSRegularExpression* compiled =
            [NSRegularExpression regularExpressionWithPattern:foundationString(pattern)
                                                      options:0
                                                        error:nullptr];
        if (compiled == nil) {
            fatalError("a regular expression does not compile");
        }
        implementation_ = std::make_unique<const Implementation>(compiled);
    }
}

RegularExpression::RegularExpression(RegularExpression&&) noexcept = default;
RegularExpression& RegularExpression::operator=(RegularExpression&&) noexcept = default;
RegularExpression::~RegularExpression() = default;

std::optional<std::vector<std::string>> RegularExpression::firstMatch(std::string_view text) const {
    @autoreleasepool {
        NSString* input = foundationString(text);
        NSTextCheckingResult* match =
            [implementation_->expression.get() firstMatchInString:input
                                                          options:0
                                                            range:NSMakeRange(0, [input length])];
        if (match == nil) {
            return std::nullopt;
        }
        std::vector<std::string> groups;
        for (NSUInteger index = 0; index < [match numberOfRanges]; ++index) {
            const NSRange group = [match rangeAtIndex:index];
            groups.push_back(group.location == NSNotFound ? std::string()
                                                          : utf8([input substringWithRange:group]));
        }
        return groups;
    }
}

}  // namespace browsersweep
