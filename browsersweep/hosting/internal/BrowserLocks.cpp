#include "browsersweep/hosting/internal/BrowserLocks.h"

#include <charconv>
#include <system_error>

#include "browsersweep/platform/internal/Processes.h"

namespace browsersweep {
namespace {

std::optional<std::string> linkTarget(const std::filesystem::path& link) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(link, error);
    return error ? std::nullopt : std::optional(target.string());
}

std::optional<LockOwner> owner(std::string_view host, std::string_view process) {
    LockOwner found{std::string(host), 0};
    const char* const end = process.data() + process.size();
    const auto parsed = std::from_chars(process.data(), end, found.process);
    const bool isWhole = parsed.ec == std::errc() && parsed.ptr == end && found.process > 0;
    return isWhole ? std::optional(found) : std::nullopt;
}

}  // namespace

std::optional<LockOwner> chromiumLockOwner(std::string_view target) {
    const auto dash = target.rfind('-');
    if (dash == std::string_view::npos) {
        return std::nullopt;
    }
    return owner(target.substr(0, dash), target.substr(dash + 1));
}

std::optional<LockOwner> firefoxLockOwner(std::string_view target) {
    const auto colon = target.rfind(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    auto process = target.substr(colon + 1);
    if (!process.empty() && process.front() == '+') {
        process.remove_prefix(1);
    }
    return owner({}, process);
}

bool isHeldByChromium(const std::filesystem::path& dataFolder) {
    const auto target = linkTarget(dataFolder / "SingletonLock");
    const auto holder = target ? chromiumLockOwner(*target) : std::nullopt;
    return holder && (holder->host != hostName() || isAlive(holder->process));
}

bool isHeldByFirefox(const std::filesystem::path& profileFolder) {
    const auto parentLock = profileFolder / ".parentlock";
    if (isLockedByAnother(parentLock)) {
        return true;
    }
    // Beside a ".parentlock" the link says nothing more: it stays behind after a crash.
    std::error_code error;
    if (std::filesystem::exists(parentLock, error)) {
        return false;
    }
    const auto target = linkTarget(profileFolder / "lock");
    const auto holder = target ? firefoxLockOwner(*target) : std::nullopt;
    return holder && isAlive(holder->process);
}

}  // namespace browsersweep
