#pragma once

#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/platform/PropertyList.h"
#include "browsersweep/platform/URL.h"

namespace browsersweep {

/**
 * The sites that Safari's "Permissions.plist" allows to send notifications: of every dictionary in
 * the outermost one, in the file's order, the texts of "Allowed Domains" that parse as addresses.
 * What has another shape is skipped, and so is a list that does not hold texts alone.
 */
BROWSERSWEEP_EXPORT std::vector<URL> allowedSites(const PropertyList& permissions);

}  // namespace browsersweep
