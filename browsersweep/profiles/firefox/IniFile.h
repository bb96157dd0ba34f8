#pragma once

#include <map>
#include <string>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/**
 * The sections of an INI text, read line by line. What a line gives is what three regular
 * expressions accept; any other line is ignored. Reading never fails.
 *
 * A key and a value are runs of characters other than white space, so a value is cut at its first
 * space, and at most one white-space character may stand on each side of the "=". A ";" begins a
 * comment anywhere, also inside a value; "#" does not. Letter case counts. Of a section that occurs
 * twice only the properties after its last header are kept.
 */
class BROWSERSWEEP_EXPORT IniFile {
public:
    /** Values by key; of equal keys the last one counts. */
    using Properties = std::map<std::string, std::string>;
    /** Properties by the name of their section. */
    using Sections = std::map<std::string, Properties>;

    /** Parses UTF-8 text. */
    explicit IniFile(std::string_view text);

    /** The properties by key, by the name of their section. */
    const Sections& sections() const noexcept { return sections_; }

private:
    Sections sections_;
};

}  // namespace browsersweep
