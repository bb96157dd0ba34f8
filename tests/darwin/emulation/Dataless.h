#pragma once

#include <string>

namespace browsersweep::emulation {

/** Whether this thread's policy lets a folder be fetched from the cloud; if so it is recorded. */
bool mayDownload(const std::string& folder);

}  // namespace browsersweep::emulation

/** How many folders have been fetched so far: what tests of the policy ask. */
extern "C" int browsersweepEmulatedDownloads();
