#include "cli/DocumentText.h"

#include <utility>

#include "cli/Text.h"

namespace browsersweep::cli {

void DocumentText::add(std::string_view name, const JSON& value) {
    beginMember(name);
    addValue(value, 2);
}

std::string DocumentText::finish() && {
    text_ += text_.size() == 1 ? "}\n" : "\n}\n";
    return escapedDocument(std::move(text_));
}

void DocumentText::beginMember(std::string_view name) {
    text_ += text_.size() == 1 ? "\n  " : ",\n  ";
    addValue(name, 2);
    text_ += ": ";
}

/** A value written by itself begins at the margin; its texts hold no end of a line. */
void DocumentText::addValue(const JSON& value, std::size_t indentation) {
    for (const char character : indentedText(value)) {
        text_ += character;
        if (character == '\n') {
            text_.append(indentation, ' ');
        }
    }
}

}  // namespace browsersweep::cli
