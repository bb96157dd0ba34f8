#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep::cli {

/** What a profile is called for people: its name, and its folder too where that is shared. */
std::string labelOf(std::string_view name, const std::optional<std::string>& folder,
                    bool isNameShared);

/** Which names of one browser's profiles are borne by more than one of them. */
class ProfileLabels {
public:
    /** Takes note of a profile. */
    void add(const BrowserProfile& profile);

    /** Whether more than one of the profiles noted so far has this name. */
    bool isShared(const std::optional<std::string>& name) const;

private:
    std::map<std::string, int> counts_;
};

}  // namespace browsersweep::cli
