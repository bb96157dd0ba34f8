#include "cli/SiteCommands.h"

#include <stdexcept>

#include "browsersweep/hosting/PatternFault.h"

#include "cli/OptionTable.h"

// The parser knows none of the commands, so none of the last functions is ever called.

namespace browsersweep::cli {

const std::vector<CommandRow>& siteCommands() {
    static const std::vector<CommandRow> none;
    return none;
}

const std::vector<OptionRow>& siteOptions() {
    static const std::vector<OptionRow> none;
    return none;
}

void requireSites(const Options& /*options*/) {}

void readKeepList(SiteOptions& /*options*/) {}

std::optional<std::string> nameOfSite(const std::string& text) {
    return patternFault(text) ? std::nullopt : std::optional(text);
}

std::vector<std::shared_ptr<const BrowserProfile>> profilesOfSites(Browser /*browser*/,
                                                                   const Home& /*home*/) {
    return {};
}

SiteListReport gatherSites(const Options& /*options*/, const SiteWork& /*work*/,
                           Observer& /*observer*/) {
    throw std::logic_error("a program without sites");
}

ForgetReport gatherForget(const Options& /*options*/, const SiteWork& /*work*/,
                          Observer& /*observer*/) {
    throw std::logic_error("a program without sites");
}

ForgetReport previewForget(const Options& /*options*/, const SiteWork& /*work*/,
                           Observer& /*observer*/) {
    throw std::logic_error("a program without sites");
}

}  // namespace browsersweep::cli
