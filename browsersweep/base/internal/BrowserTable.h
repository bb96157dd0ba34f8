#pragma once

#include <array>
#include <string_view>

#include "browsersweep/base/Browser.h"

namespace browsersweep {

/** How a browser keeps its profiles and the locks on them. */
enum class BrowserFamily { chromium, firefox, safari };

/** All that the library knows of one browser. Every text is a literal and ends in a zero byte. */
struct BrowserRow {
    std::string_view rawValue;
    std::string_view displayName;
    std::string_view bundleIdentifier;
    BrowserFamily family;
    /** Its data folder below Application Support; empty for Safari, whose data lies elsewhere. */
    std::string_view applicationSupportFolder;
    /** The name of its process on macOS, where it is that of the application's program. */
    std::string_view processOnMac;
    /** The names on other systems, which Linux cuts after 15 bytes; empty places at the end. */
    std::array<std::string_view, 2> processesElsewhere;
};

/** The row of a browser. */
const BrowserRow& rowOf(Browser browser) noexcept;

}  // namespace browsersweep
