#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace browsersweep {

/** The elements of a property list in XML. */
enum class XMLElement : std::uint8_t {
    plist,
    array,
    dictionary,
    key,
    string,
    integer,
    real,
    date,
    data,
    yes,
    no
};

/** The element of a name, if there is one. Letter case counts. */
std::optional<XMLElement> elementNamed(std::string_view name) noexcept;

/** Whether values stand in it. */
bool isContainer(XMLElement element) noexcept;

}  // namespace browsersweep
