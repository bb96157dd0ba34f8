#pragma once

#include <string>

#include "cli/Appearance.h"
#include "cli/SiteReport.h"

namespace browsersweep::cli {

/** What each site left, for people: a table of sites, and what no site can be told of. */
std::string peopleText(const SiteListReport& report, const Appearance& appearance);

/** What went, or would go, and what stays, for people. */
std::string peopleText(const ForgetReport& report, const Appearance& appearance);

/** Whose something is, for people, such as "Chromium, Person 1". */
std::string displayName(const SiteOwner& owner);

/** The browsers in which a site left something, by name, each once. */
std::string browsersOf(const SiteRow& row);

}  // namespace browsersweep::cli
