#pragma once

#include <exception>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** What an error means for people, whatever reported it. */
enum class FailureKind {
    nothingThere,   ///< a file that is needed is missing
    locked,         ///< a running browser holds the data
    noPermission,   ///< the system does not allow it
    notUnderstood,  ///< the data is not of a form that is known
    cancelled,      ///< the host stopped the operation
    other,          ///< the error's own message says more than any kind could
};

/** The kind of an error of the library, of SQLite, or of the file system. */
BROWSERSWEEP_EXPORT FailureKind failureKind(const std::exception& error) noexcept;

/** The kind in words, such as "no permission"; empty for `other`. */
BROWSERSWEEP_EXPORT std::string_view displayName(FailureKind kind) noexcept;

}  // namespace browsersweep
