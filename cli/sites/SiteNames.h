#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "browsersweep/sites/Site.h"

namespace browsersweep::cli {

/** What is wrong with a text as the name of a site; empty where nothing is. */
std::string faultOfSite(const std::string& text);

/** The sites of texts that are names of sites. */
std::set<Site> sitesNamed(const std::vector<std::string>& texts);

/** What a text stands for, where it is not the name of its site itself; empty where it is. */
std::string remarkOn(const std::string& text);

/**
 * That nothing of a site was found, and what may have been meant instead. It may be where nobody
 * could look, unless all was seen.
 */
std::string remarkOnMissing(const Site& site, const std::set<Site>& found, bool isAllSeen = true);

/**
 * The sites of a text with one of them in a line; "#" begins a comment. Throws a `UsageError` that
 * names the line where one is no site.
 */
std::vector<std::string> sitesInList(std::string_view text, const std::filesystem::path& file);

}  // namespace browsersweep::cli
