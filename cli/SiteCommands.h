#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/base/Browser.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfile.h"

#include "cli/Commands.h"
#include "cli/Gather.h"
#include "cli/Options.h"
#include "cli/SiteReport.h"

// The commands about sites. A library that is built without sites has a program without them: these
// functions lie in sites/, and in withoutsites/ those that stand in for them.

namespace browsersweep::cli {

struct OptionRow;

/** The rows of the commands; none in a program without them. */
const std::vector<CommandRow>& siteCommands();

/** The options that no other command takes; none in a program without them. */
const std::vector<OptionRow>& siteOptions();

/** Throws a `UsageError` where what the commands are told is wrong or does not fit together. */
void requireSites(const Options& options);

/** Adds the sites of the file that `--keep-list` names. Throws a `UsageError` for a bad line. */
void readKeepList(SiteOptions& options);

/** The profiles that only these commands know; none in a program without them. */
std::vector<std::shared_ptr<const BrowserProfile>> profilesOfSites(Browser browser,
                                                                   const Home& home);

/** Where the commands work. */
struct SiteWork {
    const Home& home;
    CleanerFactory cleanerOf;
    /** Why a browser is to be left alone now; absent where it is not. */
    std::function<std::optional<std::string>(Browser)> refusal{};
};

/**
 * The name of the site that a text means; absent for none. A program without these commands takes
 * the text as it is.
 */
std::optional<std::string> nameOfSite(const std::string& text);

/** What each site left. */
SiteListReport gatherSites(const Options& options, const SiteWork& work, Observer& observer);

/** Forgets without asking, or says what would go where nothing is to be deleted. */
ForgetReport gatherForget(const Options& options, const SiteWork& where, Observer& observer);

/** What would go, and what would stay. */
ForgetReport previewForget(const Options& options, const SiteWork& where, Observer& observer);

}  // namespace browsersweep::cli
