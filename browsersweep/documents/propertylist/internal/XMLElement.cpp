#include "browsersweep/documents/propertylist/internal/XMLElement.h"

#include <algorithm>
#include <array>
#include <utility>

namespace browsersweep {

std::optional<XMLElement> elementNamed(std::string_view name) noexcept {
    // clang-format off
    static constexpr std::array<std::pair<std::string_view, XMLElement>, 11> elements{{
        {"plist",   XMLElement::plist},   {"array",  XMLElement::array},
        {"dict",    XMLElement::dictionary},
        {"key",     XMLElement::key},     {"string", XMLElement::string},
        {"integer", XMLElement::integer}, {"real",   XMLElement::real},
        {"date",    XMLElement::date},    {"data",   XMLElement::data},
        {"true",    XMLElement::yes},     {"false",  XMLElement::no},
    }};
    // clang-format on
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [name](const auto& row) { return row.first == name; });
    return found == elements.end() ? std::nullopt : std::optional(found->second);
}

bool isContainer(XMLElement element) noexcept {
    return element == XMLElement::array || element == XMLElement::dictionary;
}

}  // namespace browsersweep
