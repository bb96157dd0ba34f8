#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace browsersweep {

/** Who holds the data folder of a browser, as its lock says. */
struct LockOwner {
    std::string host;  ///< empty where the lock does not tell
    long process = 0;
};

/** The owner that "SingletonLock" of a Chromium-based browser names: "host-pid". */
std::optional<LockOwner> chromiumLockOwner(std::string_view linkTarget);

/** The owner that "lock" of a Firefox profile names: "address:pid" or "address:+pid". */
std::optional<LockOwner> firefoxLockOwner(std::string_view linkTarget);

/**
 * Whether a Chromium-based browser holds this data folder: its lock names a process that lives, or
 * another machine, whose processes cannot be seen from here.
 */
bool isHeldByChromium(const std::filesystem::path& dataFolder);

/** Whether Firefox holds this profile folder: ".parentlock" is locked, or "lock" names a process.
 */
bool isHeldByFirefox(const std::filesystem::path& profileFolder);

}  // namespace browsersweep
