#pragma once

#include <memory>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** The stores of a profile of Firefox that are files and folders, not databases. Touches no file.
 */
TraceStores firefoxFileStores(const ProfileFolders& folders,
                              const std::shared_ptr<const FileManager>& fileManager);

/** Those that ask the databases, and so must have their turn before them. Touches no file. */
TraceStores storesBeforeDatabases(const ProfileFolders& folders,
                                  const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
