#pragma once

#include <vector>

#include "browsersweep/base/URL.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

/**
 * The sites that Safari's "Permissions.plist" allows to send notifications: of every dictionary in
 * the outermost one, in the file's order, the texts of "Allowed Domains" that parse as addresses.
 * What has another shape is skipped, and so is a list that does not hold texts alone.
 */
std::vector<URL> allowedSites(const PropertyList& permissions);

}  // namespace browsersweep
