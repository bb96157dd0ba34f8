#pragma once

#include <optional>
#include <string>

#include "browsersweep/Export.h"
#include "browsersweep/base/URL.h"

namespace browsersweep {

/** One bookmark of a profile. */
struct BROWSERSWEEP_EXPORT Bookmark {
    std::optional<std::string> name;  ///< its title; absent where it has none
    URL url;                          ///< what it leads to

    /** Whether all fields are equal. */
    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

}  // namespace browsersweep
