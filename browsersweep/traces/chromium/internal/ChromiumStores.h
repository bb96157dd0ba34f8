#pragma once

#include <filesystem>
#include <memory>

#include "browsersweep/platform/FileManager.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/traces/TraceStores.h"

namespace browsersweep {

/** The stores of one profile of a browser that is built on Chromium. Touches no file. */
TraceStores chromiumStores(const ProfileFolders& folders,
                           const std::shared_ptr<const FileManager>& fileManager);

/** The stores that its profiles share, in the browser's own folder. Touches no file. */
TraceStores sharedChromiumStores(const std::filesystem::path& browserFolder,
                                 const std::shared_ptr<const FileManager>& fileManager);

}  // namespace browsersweep
