#include "cli/Wrapping.h"

#include <algorithm>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

/** Fills lines with words. */
class Lines {
public:
    Lines(std::size_t width, std::size_t start, std::size_t indent, LongWords longWords)
        : width_(width),
          indent_(std::min(indent, width / 2)),
          longWords_(longWords),
          line_(start, ' ') {}

    void add(std::string_view word) {
        if (hasWord_ && displayWidth(line_) + 1 + displayWidth(word) > width_) {
            breakLine();
        }
        line_ += hasWord_ ? " " : "";
        while (longWords_ == LongWords::broken &&
               displayWidth(line_) + displayWidth(word) > width_) {
            addCharacters(word);
            breakLine();
        }
        line_ += word;
        hasWord_ = true;
    }

    std::string text() const { return finished_ + line_ + "\n"; }

private:
    /** Takes from the word what the line has room for, and one character in any case. */
    void addCharacters(std::string_view& word) {
        do {
            const auto length = characterAt(word, 0).length;
            line_ += word.substr(0, length);
            word.remove_prefix(length);
        } while (!word.empty() &&
                 displayWidth(line_) + displayWidth(word.substr(0, characterAt(word, 0).length)) <=
                     width_);
    }

    void breakLine() {
        finished_ += line_ + "\n";
        line_.assign(indent_, ' ');
        hasWord_ = false;
    }

    std::size_t width_;
    std::size_t indent_;
    LongWords longWords_;
    std::string finished_;
    std::string line_;
    bool hasWord_ = false;
};

}  // namespace

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent,
                    LongWords longWords) {
    if (width == 0) {
        return std::string(text) + "\n";
    }
    const auto start = std::min(text.find_first_not_of(' '), text.size());
    text.remove_prefix(start);
    Lines lines(width, std::min(start, width / 2), indent, longWords);
    while (!text.empty()) {
        const bool isPath = longWords == LongWords::kept && text.front() == '/';
        const auto end = isPath ? text.size() : std::min(text.find(' '), text.size());
        lines.add(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines.text();
}

}  // namespace browsersweep::cli
