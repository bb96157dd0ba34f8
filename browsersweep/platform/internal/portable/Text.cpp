#include "browsersweep/platform/internal/Text.h"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include <unicode/bytestream.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>

#include "browsersweep/base/FatalError.h"

namespace browsersweep {
namespace {

void requireSuccess(UErrorCode status, std::string_view what) noexcept {
    if (U_FAILURE(status) != 0) {
        fatalError(std::string(what) + ": " + u_errorName(status));
    }
}

icu::UnicodeString unicodeString(std::string_view text) {
    if (text.size() > std::numeric_limits<std::int32_t>::max()) {
        fatalError("a text is too long");
    }
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

/** The boundaries of user-perceived characters in a text that must outlive it, as byte offsets. */
class CharacterBoundaries {
public:
    explicit CharacterBoundaries(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&text_, text.data(), static_cast<std::int64_t>(text.size()), &status);
        iterator_.reset(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
        ubrk_setUText(iterator_.get(), &text_, &status);
        requireSuccess(status, "ICU cannot find the characters of a text");
    }
    CharacterBoundaries(const CharacterBoundaries&) = delete;
    CharacterBoundaries& operator=(const CharacterBoundaries&) = delete;
    ~CharacterBoundaries() {
        iterator_.reset();
        utext_close(&text_);
    }

    std::size_t last() { return static_cast<std::size_t>(ubrk_last(iterator_.get())); }

    /** The boundary before the present one, which must not be the first. */
    std::size_t previous() { return static_cast<std::size_t>(ubrk_previous(iterator_.get())); }

private:
    struct Closer {
        void operator()(UBreakIterator* iterator) const noexcept { ubrk_close(iterator); }
    };

    UText text_ = UTEXT_INITIALIZER;
    std::unique_ptr<UBreakIterator, Closer> iterator_;
};

/** How letter case is folded for the user: Turkish and Azerbaijani tell a dotless i apart. */
std::uint32_t foldingOfUserLocale() {
    const std::string_view language = icu::Locale::getDefault().getLanguage();
    const bool turkic = language == "tr" || language == "az";
    return turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

/** A form in which canonically equal texts that differ in case alone are the same code units. */
icu::UnicodeString foldedForSearch(std::string_view text, std::uint32_t folding) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposition = icu::Normalizer2::getNFDInstance(status);
    requireSuccess(status, "ICU cannot decompose a text");
    icu::UnicodeString folded = decomposition->normalize(unicodeString(text), status);
    folded.foldCase(folding);
    icu::UnicodeString result = decomposition->normalize(folded, status);
    requireSuccess(status, "ICU cannot decompose a text");
    return result;
}

bool isCombiningMarkAt(const icu::UnicodeString& text, std::int32_t position) {
    return position < text.length() && (U_GET_GC_MASK(text.char32At(position)) & U_GC_M_MASK) != 0;
}

}  // namespace

std::string reversedCharacters(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    std::string result;
    result.reserve(text.size());
    CharacterBoundaries boundaries(text);
    for (std::size_t end = boundaries.last(); end > 0;) {
        const std::size_t start = boundaries.previous();
        result.append(text.substr(start, end - start));
        end = start;
    }
    return result;
}

bool localizedCaseInsensitiveContains(std::string_view text, std::string_view pattern) {
    const std::uint32_t folding = foldingOfUserLocale();
    const icu::UnicodeString wanted = foldedForSearch(pattern, folding);
    if (wanted.isEmpty()) {
        return false;
    }
    const icu::UnicodeString searched = foldedForSearch(text, folding);
    for (std::int32_t hit = searched.indexOf(wanted); hit >= 0;
         hit = searched.indexOf(wanted, hit + 1)) {
        if (!isCombiningMarkAt(searched, hit + wanted.length())) {
            return true;
        }
    }
    return false;
}

struct RegularExpression::Implementation {
    std::unique_ptr<icu::RegexPattern> pattern;
};

RegularExpression::RegularExpression(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(unicodeString(pattern), 0, status));
    requireSuccess(status, "a regular expression does not compile");
    implementation_ = std::make_unique<const Implementation>(Implementation{std::move(compiled)});
}

RegularExpression::RegularExpression(RegularExpression&&) noexcept = default;
RegularExpression& RegularExpression::operator=(RegularExpression&&) noexcept = default;
RegularExpression::~RegularExpression() = default;

std::optional<std::vector<std::string>> RegularExpression::firstMatch(std::string_view text) const {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString input = unicodeString(text);  // the matcher refers to it
    const std::unique_ptr<icu::RegexMatcher> matcher(
        implementation_->pattern->matcher(input, status));
    if (U_FAILURE(status) != 0 || matcher->find(status) == 0) {
        return std::nullopt;
    }
    std::vector<std::string> groups;
    for (std::int32_t group = 0; group <= matcher->groupCount(); ++group) {
        groups.push_back(utf8(matcher->group(group, status)));
    }
    return groups;
}

}  // namespace browsersweep
