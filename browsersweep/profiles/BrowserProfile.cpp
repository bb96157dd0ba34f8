#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

BrowserProfile::~BrowserProfile() = default;

std::optional<std::string> BrowserProfile::folder() const {
    return std::nullopt;
}

std::optional<std::string> BrowserProfile::leftOutReason() const {
    return std::nullopt;
}

std::optional<ProfileFolders> BrowserProfile::folders() const {
    return std::nullopt;
}

}  // namespace browsersweep
