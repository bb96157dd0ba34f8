#pragma once

#include <memory>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** The stores of a profile of Chromium that are documents in JSON. Touches no file. */
TraceStores documentStores(const ProfileFolders& folders,
                           const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
