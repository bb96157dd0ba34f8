#pragma once

#include <filesystem>
#include <string_view>

#include "browsersweep/Export.h"

namespace browsersweep {

/** Whether a program may read what lies at a path, and if not, what keeps it from it. */
enum class Accessibility {
    reachable,                  ///< the file can be read, the folder listed
    missing,                    ///< nothing is there
    deniedByPermissions,        ///< its owner, mode or access list forbids it
    deniedByPrivacyProtection,  ///< the system forbids it whatever these say: see below
};

/**
 * Tries to open what lies at a path, links followed, and closes it again; nothing is changed.
 *
 * macOS keeps what some applications store, such as Safari's data, from programs that the user has
 * not given Full Disk Access. It answers "not permitted" for a folder, and newer systems hide the
 * files in it: what seems missing below a protected folder is reported as protected. To the items
 * of this library a folder that may not be opened is an empty one, so a host that shows sizes
 * should ask this first.
 *
 * Any other failure is thrown as `std::filesystem::filesystem_error`.
 */
BROWSERSWEEP_EXPORT Accessibility accessibility(const std::filesystem::path& path);

/** One English sentence for people: what it means and what can be done. Empty for `reachable`. */
BROWSERSWEEP_EXPORT std::string_view explanation(Accessibility accessibility) noexcept;

/** The identifier of a case in machine output: its own name. */
BROWSERSWEEP_EXPORT std::string_view rawValue(Accessibility accessibility) noexcept;

}  // namespace browsersweep
