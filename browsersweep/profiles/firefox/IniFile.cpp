#include "browsersweep/profiles/firefox/IniFile.h"

#include <utility>

#include "browsersweep/platform/internal/Text.h"

namespace browsersweep {
namespace {

/** The sections read so far, and the one that the next property goes to. */
class Parser {
public:
    void parseLine(std::string_view line) {
        const std::string content = withoutComment(line);
        if (content.find_first_not_of(" \t") == std::string::npos) {
            return;
        }
        if (const auto section = sectionRegex_.firstMatch(content)) {
            currentSection_ = &(sections_[section->at(1)] = {});
            return;
        }
        parseProperty(content);
    }

    IniFile::Sections takeSections() { return std::exchange(sections_, {}); }

private:
    std::string withoutComment(std::string_view line) const {
        if (line.substr(0, 1) == ";") {
            return {};
        }
        const auto beforeComment = commentRegex_.firstMatch(line);
        return beforeComment ? beforeComment->at(1) : std::string(line);
    }

    void parseProperty(const std::string& content) {
        if (currentSection_ == nullptr || !assignmentRegex_.firstMatch(content)) {
            return;
        }
        if (const auto property = propertyRegex_.firstMatch(content)) {
            (*currentSection_)[property->at(1)] = property->at(2);
        }
    }

    IniFile::Sections sections_;
    IniFile::Properties* currentSection_ = nullptr;  // values of a map stay where they are
    RegularExpression sectionRegex_{R"(^\s*\[(.+?)\])"};
    RegularExpression propertyRegex_{R"((\S+)\s?=\s?(\S+))"};
    RegularExpression commentRegex_{R"(^([^;]+)[;]?.*$)"};
    // Matches where the property's expression does, but in linear time: that one tries every start
    // of a long word that leads to nothing.
    RegularExpression assignmentRegex_{R"(\S\s?=\s?\S)"};
};

}  // namespace

IniFile::IniFile(std::string_view text) {
    Parser parser;
    for (const std::string_view line : lines(text)) {
        parser.parseLine(line);
    }
    sections_ = parser.takeSections();
}

}  // namespace browsersweep
