#pragma once

#include <memory>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** The stores of a profile of Chromium that are folders of sites, or are whole or not at all:
 * caches, and what tells no site apart. Touches no file. */
TraceStores folderStores(const ProfileFolders& folders,
                         const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
