#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace browsersweep::cli {

/** What is done with a word that alone is longer than a line. */
enum class LongWords {
    broken,
    kept,  ///< and all from a path on, spaces too, so that it can be copied from the terminal
};

/**
 * The text in lines of at most so many columns, each with its end, broken between words. Spaces
 * that the text begins with stay, and lines after the first begin with so many. Where no width
 * limits it, it is one line.
 */
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent = 0,
                    LongWords longWords = LongWords::broken);

}  // namespace browsersweep::cli
