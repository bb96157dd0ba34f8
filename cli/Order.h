#pragma once

namespace browsersweep::cli {

/** In which order the rows of a report are shown to people. */
enum class Order {
    size,   ///< the largest first
    name,   ///< by the alphabet
    items,  ///< the one with the most items first
    last,   ///< the latest used first
};

}  // namespace browsersweep::cli
