#pragma once

#include <optional>

#include "cli/Order.h"

namespace browsersweep::cli {

/** What a row of a table of sizes is about. */
enum class Grouping { browser, category, profile };

/** How people want a table of sizes. */
struct SizesView {
    /** Without one: browsers, or the categories of the only one that is selected. */
    std::optional<Grouping> grouping;
    Order order = Order::size;
    bool showsZeros = false;
    bool offersZeros = false;  ///< whether the reader may be told how to see the zeros
};

}  // namespace browsersweep::cli
