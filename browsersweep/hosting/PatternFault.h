#pragma once

#include <optional>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** What makes a text unfit to be a pattern. */
enum class PatternFault {
    empty,     ///< it would select everything
    encoding,  ///< it is not UTF-8
    reserved,  ///< it holds a quote, a wildcard of SQL ("%" or "_") or a control character
};

/**
 * What is wrong with a pattern that a person typed; absent for one that is safe. Patterns stand in
 * the text of SQL statements as they are, so a host asks this before it makes a filter of one.
 */
BROWSERSWEEP_EXPORT std::optional<PatternFault> patternFault(std::string_view pattern) noexcept;

}  // namespace browsersweep
