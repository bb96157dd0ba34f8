#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
 *
 * Only where sections begin is kept beside the text: properties are read as they are asked for, so
 * that a text of a million of them takes no more than its own length a few times.
 */
class BROWSERSWEEP_EXPORT IniFile {
public:
    /** Values by key; of equal keys the last one counts. */
    using Properties = std::map<std::string, std::string>;
    /** Properties by the name of their section. */
    using Sections = std::map<std::string, Properties>;

    /** One section. Valid as long as the file. */
    class BROWSERSWEEP_EXPORT Section {
    public:
        /** What stands between the brackets of its header. */
        std::string_view name() const noexcept { return name_; }
        /** The value of a key; of equal keys the last one counts. */
        std::optional<std::string> find(std::string_view key) const;
        /** All of its properties, made anew at each call. */
        Properties properties() const;

    private:
        friend IniFile;
        Section(std::string_view name, std::string_view below) noexcept
            : name_(name), below_(below) {}

        std::string_view name_;
        std::string_view below_;  // from the line after the header to the end of the text
    };

    /** Parses UTF-8 text. */
    explicit IniFile(std::string_view text);

    /** How many sections there are; those of one name count once. */
    std::size_t count() const noexcept { return headers_.size(); }

    /** The sections by number, from 0, in the order of their names. */
    Section section(std::size_t number) const;

    /** The properties by key, by the name of their section; made anew at each call. */
    Sections sections() const;

private:
    /** Where the name of a section stands in the text. */
    struct Header {
        std::size_t place;
        std::size_t length;
    };

    static std::vector<Header> headersIn(std::string_view text);
    std::string_view nameIn(const Header& header) const noexcept;

    std::string text_;
    std::vector<Header> headers_;  // by their names
};

}  // namespace browsersweep
