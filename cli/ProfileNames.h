#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/profiles/BrowserProfile.h"

#include "cli/Gather.h"
#include "cli/Selection.h"

namespace browsersweep::cli {

/** The profiles that a command knows beside those that every command knows. */
using ProfilesBeside = std::function<std::vector<std::shared_ptr<const BrowserProfile>>(Browser)>;

/**
 * Reads which profiles the selected browsers have, and settles for each browser what the profiles
 * named in the selection mean there: those of this name, or else the one in the folder of this
 * name, or else the one that reports call so: "Work (Profile 2)". Never both: a folder is often
 * called as the browser shows another profile, and a clean must not take one for the other. The
 * result is a line for each that no selected browser knows. A browser whose profiles cannot be read
 * knows none; the report says so.
 */
std::vector<std::string> settleProfiles(Selection& selection, const CleanerFactory& cleanerOf,
                                        const ProfilesBeside& beside);

}  // namespace browsersweep::cli
