#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace browsersweep::cli {

/** A line of a list that somebody wrote. */
struct ListLine {
    std::size_t number = 0;  ///< counted from 1
    std::string text;        ///< without the blanks around it; never empty

    /** Whether all fields are equal. */
    friend bool operator==(const ListLine&, const ListLine&) = default;
};

/** Spaces and tabs: what words of a line stand between. */
constexpr std::string_view listBlanks = " \t";

/**
 * The lines of a list that hold more than blanks and a comment, which "#" begins. They may end as
 * on any system, also in a carriage return alone: else a comment would swallow the rest.
 */
std::vector<ListLine> listLines(std::string_view text);

}  // namespace browsersweep::cli
