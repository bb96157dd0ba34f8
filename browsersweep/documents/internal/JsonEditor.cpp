#include "browsersweep/documents/internal/JsonEditor.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>
#include <utility>

#include "browsersweep/documents/internal/Json.h"

namespace browsersweep {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isSpace(char letter) noexcept {
    return letter == ' ' || letter == '\t' || letter == '\n' || letter == '\r';
}

/** "\\ud83d": a unit of UTF-16 in hexadecimal digits. */
constexpr std::size_t escapeLength = 6;

std::optional<unsigned> unitAt(std::string_view text, std::size_t place) {
    const std::string_view escape = text.substr(std::min(place, text.size()), escapeLength);
    unsigned unit = 0;
    if (escape.size() < escapeLength || !escape.starts_with("\\u")) {
        return std::nullopt;
    }
    const auto read = std::from_chars(escape.data() + 2, escape.data() + escapeLength, unit, 16);
    return read.ptr == escape.data() + escapeLength ? std::optional(unit) : std::nullopt;
}

bool isFirstHalf(std::optional<unsigned> unit) noexcept {
    return unit && *unit >= 0xD800 && *unit < 0xDC00;
}

bool isSecondHalf(std::optional<unsigned> unit) noexcept {
    return unit && *unit >= 0xDC00 && *unit < 0xE000;
}

/**
 * The text with U+FFFD for each half of a pair that stands alone. The grammar of JSON allows them,
 * and browsers write them where they cut a title in the middle of a character.
 */
std::string withWholeCharacters(std::string_view text) {
    std::string whole(text);
    for (auto place = text.find('\\'); place < text.size(); place = text.find('\\', place)) {
        const auto unit = unitAt(text, place);
        const bool isPair = isFirstHalf(unit) && isSecondHalf(unitAt(text, place + escapeLength));
        if (!isPair && (isFirstHalf(unit) || isSecondHalf(unit))) {
            whole.replace(place, escapeLength, "\\ufffd");
        }
        place += isPair ? 2 * escapeLength : 2;
    }
    return whole;
}

BytesView bytesOf(std::string_view text) noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the same bytes, unsigned
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

// The text is checked once as a whole; what follows relies on it.
JsonEditor::JsonEditor(BytesView bytes) : text_(bytes.begin(), bytes.end()) {
    JsonDocument::parse(bytesOf(withWholeCharacters(text_)));
    const std::size_t mark = text_.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    root_.begin = afterSpace(mark);
    root_.end = afterValue(root_.begin);
}

std::size_t JsonEditor::afterSpace(std::size_t place) const noexcept {
    while (place < text_.size() && isSpace(text_[place])) {
        ++place;
    }
    return place;
}

std::size_t JsonEditor::afterString(std::size_t place) const noexcept {
    for (++place; text_[place] != '"'; ++place) {
        place += text_[place] == '\\' ? 1 : 0;
    }
    return place + 1;
}

std::size_t JsonEditor::afterValue(std::size_t place) const noexcept {
    std::size_t depth = 0;
    do {
        const char letter = text_[place];
        if (letter == '"') {
            place = afterString(place);
        } else if (letter == '{' || letter == '[') {
            ++depth;
            ++place;
        } else if (letter == '}' || letter == ']') {
            --depth;
            ++place;
        } else if (depth > 0) {
            ++place;
        } else {
            return std::min(text_.find_first_of(" \t\n\r,]}", place), text_.size());
        }
    } while (depth > 0);
    return place;
}

std::string_view JsonEditor::text(Value value) const noexcept {
    return std::string_view(text_).substr(value.begin, value.end - value.begin);
}

std::string JsonEditor::string(Value value) const {
    const std::string_view whole = text(value);
    if (!whole.starts_with('"')) {
        return {};
    }
    if (whole.find('\\') == std::string_view::npos) {
        return std::string(whole.substr(1, whole.size() - 2));
    }
    return std::string(JsonDocument::parse(bytesOf(withWholeCharacters(whole))).root().string());
}

JsonEditor::Member JsonEditor::memberAt(std::size_t place, bool hasKey) const {
    Member member;
    member.begin = place;
    std::size_t begin = afterSpace(place);
    if (hasKey) {
        const std::size_t end = afterString(begin);
        member.key = string({begin, end});
        begin = afterSpace(afterSpace(end) + 1);  // the colon
    }
    member.value = {begin, afterValue(begin)};
    member.end = afterSpace(member.value.end);
    return member;
}

std::vector<JsonEditor::Member> JsonEditor::members(Value value) const {
    std::vector<Member> found;
    const bool isObject = text_[value.begin] == '{';
    const bool isEmpty = afterSpace(value.begin + 1) + 1 == value.end;
    if ((!isObject && text_[value.begin] != '[') || isEmpty) {
        return found;
    }
    for (std::size_t place = value.begin; place + 1 < value.end; place = found.back().end) {
        found.push_back(memberAt(place + 1, isObject));
    }
    return found;
}

std::vector<JsonEditor::Member> JsonEditor::members(Value value, std::string_view key) const {
    std::vector<Member> found;
    if (text_[value.begin] != '{') {
        return found;
    }
    for (Member& member : members(value)) {
        if (member.key == key) {
            found.push_back(std::move(member));
        }
    }
    return found;
}

// The first that stays has no comma before it: those in front of it go with the comma after them,
// those behind it with the one before them.
void JsonEditor::remove(const std::vector<Member>& members, const std::vector<bool>& isRemoved) {
    bool isBehindOne = false;
    for (std::size_t index = 0; index < members.size(); ++index) {
        const Member& member = members[index];
        const bool isLast = index + 1 == members.size();
        if (!isRemoved[index]) {
            isBehindOne = true;
        } else if (isBehindOne) {
            edits_.push_back({member.begin - 1, member.end, {}});
        } else {
            edits_.push_back({member.begin, isLast ? member.end : member.end + 1, {}});
        }
    }
}

void JsonEditor::replace(Value value, std::string text) {
    edits_.push_back({value.begin, value.end, std::move(text)});
}

std::string JsonEditor::edited() const {
    auto edits = edits_;
    std::sort(edits.begin(), edits.end(), [](const Edit& one, const Edit& other) {
        return one.begin != other.begin ? one.begin < other.begin : one.end > other.end;
    });
    std::string result;
    std::size_t place = 0;
    for (const Edit& edit : edits) {
        if (edit.begin < place) {
            continue;  // within one that was made already
        }
        result.append(text_, place, edit.begin - place).append(edit.text);
        place = edit.end;
    }
    return result.append(text_, place);
}

}  // namespace browsersweep
