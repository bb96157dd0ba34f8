#include "cli/ProfileLabels.h"

#include <fmt/format.h>

namespace browsersweep::cli {
namespace {

/** Profiles without a name are not told apart either. */
std::string keyOf(const std::optional<std::string>& name) {
    return name ? "=" + *name : "";
}

}  // namespace

std::string labelOf(std::string_view name, const std::optional<std::string>& folder,
                    bool isNameShared) {
    return isNameShared && folder ? fmt::format("{} ({})", name, *folder) : std::string(name);
}

void ProfileLabels::add(const BrowserProfile& profile) {
    ++counts_[keyOf(profile.name())];
}

bool ProfileLabels::isShared(const std::optional<std::string>& name) const {
    const auto found = counts_.find(keyOf(name));
    return found != counts_.end() && found->second > 1;
}

}  // namespace browsersweep::cli
