#include "cli/GatherPieces.h"

namespace browsersweep::cli {

ProfileRow rowOf(const BrowserProfile& profile, const ProfileLabels& labels) {
    return {profile.name(), profile.isPrimary(), profile.folder(), labels.isShared(profile.name())};
}

bool selects(const Options& options, const BrowserProfile& profile,
             std::vector<LeftOutProfile>& leftOut) {
    const bool isSelected = options.selection.includes(profile);
    const auto reason = isSelected ? profile.leftOutReason() : std::nullopt;
    if (reason) {
        leftOut.push_back({rowOf(profile), *reason});
    }
    return isSelected;
}

}  // namespace browsersweep::cli
