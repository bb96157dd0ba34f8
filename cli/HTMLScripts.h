#pragma once

#include <string>
#include <string_view>

namespace browsersweep::cli {

/** A script that a page runs. It is part of the page and asks nobody for anything. */
struct PageScript {
    std::string_view text;
    std::string_view digest;  ///< its SHA-256 in base 64, by which the page's policy allows it
};

/** Makes the headers of every table of the class "sortable" into buttons that sort it. */
extern const PageScript sortScript;

/** The script as it stands in a page. */
std::string elementOf(const PageScript& script);

}  // namespace browsersweep::cli
