#include "cli/ListLines.h"

#include <algorithm>

namespace browsersweep::cli {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) noexcept {
    const auto begin = text.find_first_not_of(listBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(listBlanks) - begin + 1);
}

/** The next line, which is taken off the text with its end. */
std::string_view takeLine(std::string_view& text) noexcept {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(line.size());
    const std::size_t end = text.starts_with("\r\n") ? 2 : 1;
    text.remove_prefix(std::min(end, text.size()));
    return line;
}

}  // namespace

std::vector<ListLine> listLines(std::string_view text) {
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    std::vector<ListLine> lines;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        const std::string_view content = trimmed(line.substr(0, line.find('#')));
        if (!content.empty()) {
            lines.push_back({number, std::string(content)});
        }
    }
    return lines;
}

}  // namespace browsersweep::cli
