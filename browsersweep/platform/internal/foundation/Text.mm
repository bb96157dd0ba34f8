#include "browsersweep/platform/internal/Text.h"

#include "browsersweep/base/FatalError.h"
#include "browsersweep/platform/internal/foundation/FoundationText.h"

namespace browsersweep {
namespace {

/** The user-perceived character that ends at an index, which must not be 0. */
NSRange characterBefore(NSString* string, NSUInteger end) {
    const NSRange character = [string rangeOfComposedCharacterSequenceAtIndex:end - 1];
    const bool isLineFeed = [string characterAtIndex:character.location] == '\n';
    if (isLineFeed && character.location > 0 &&
        [string characterAtIndex:character.location - 1] == '\r') {
        return NSMakeRange(character.location - 1, 2);  // the two are one character
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
    explicit Implementation(NSRegularExpression* compiled) : expression([compiled retain]) {}
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation() { [expression release]; }

    NSRegularExpression* expression;
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
            [implementation_->expression firstMatchInString:input
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
