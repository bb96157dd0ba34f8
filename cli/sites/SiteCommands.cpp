#include "cli/SiteCommands.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "browsersweep/sites/TraceKind.h"

#include "cli/Ages.h"
#include "cli/OptionTable.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"
#include "cli/sites/SiteNames.h"

namespace browsersweep::cli {
namespace {

constexpr std::string_view sitesNotes =
    R"(When a site was last used is not always known; --older-than leaves such sites
out. What is not stored by site has a table of its own.
)";

constexpr std::string_view forgetNotes =
    R"(A site is a registrable domain with all its hosts: www.example.com means all of
example.com. What is not stored by site (open tabs, text typed into forms) stays
when single sites are forgotten, and the plan names it; --mixed takes it too.
What you decided about sites (permissions, zoom) stays without --settings.
Bookmarks, passwords and extensions are never touched. The file of --keep-list
has one site per line; # begins a comment.
)";

std::string faultOfKind(const std::string& name) {
    if (traceKindFromRawValue(name)) {
        return {};
    }
    std::vector<std::string_view> names(allTraceKinds.size());
    std::transform(allTraceKinds.begin(), allTraceKinds.end(), names.begin(),
                   [](TraceKind kind) { return rawValue(kind); });
    return fmt::format("'{}' is not a kind; {}", printable(name), suggestion(name, names));
}

std::string faultOfList(const std::string& path) {
    return path.empty() ? "the value is empty; give a file with one site per line" : "";
}

// clang-format off
constexpr std::array optionRows{
    OptionRow{"--kind", "--kind", "KIND", "selection", Scope::sitesAndForget,
              "a kind of traces: history, downloads, icons, cookies, siteStorage, "
              "serviceWorkers, cachedFiles, openTabs, formData, settings, networkState or "
              "predictions",
              [](const std::string& value, Options& options) {
                  options.sites.kinds.push_back(value);
              }, faultOfKind},
    OptionRow{"--older-than", "--older-than", "AGE", "options", Scope::sites,
              "only sites that have not been used for this long, such as 12h, 30d, 8w or 1y",
              [](const std::string& value, Options& options) {
                  options.sites.olderThan = secondsOfAge(value);
              }, faultOfAge},
    OptionRow{"--keep", "--keep", "SITE", "options", Scope::forget,
              "with --all: a site to keep",
              [](const std::string& value, Options& options) {
                  options.sites.kept.push_back(value);
              }, faultOfSite},
    OptionRow{"--keep-list", "--keep-list", "FILE", "options", Scope::forget,
              "with --all: a file with the sites to keep",
              [](const std::string& value, Options& options) {
                  options.sites.keepList = std::filesystem::absolute(value);
              }, faultOfList},
    OptionRow{"--mixed", "--mixed", "", "options", Scope::forget,
              "also what is not stored by site, such as open tabs; other sites lose it too",
              [](const std::string& /*value*/, Options& options) {
                  options.sites.takesMixed = true;
              }, nullptr},
    OptionRow{"--settings", "--settings", "", "options", Scope::forget,
              "also what you decided about the sites: permissions, zoom",
              [](const std::string& /*value*/, Options& options) {
                  options.sites.takesSettings = true;
              }, nullptr},
};
// clang-format on

void requireSitesToForget(const SiteOptions& sites) {
    for (const auto& name : sites.names) {
        if (const auto fault = faultOfSite(name); !fault.empty()) {
            throw UsageError(fault);
        }
    }
    if (sites.names.empty() && !sites.all) {
        throw UsageError("forget needs a site, or --all for every site");
    }
    if (!sites.names.empty() && sites.all) {
        throw UsageError("--all is every site; leave out --all or the names of sites");
    }
    if (!sites.all && (!sites.kept.empty() || sites.keepList)) {
        throw UsageError(
            "--keep and --keep-list belong to --all; without it only the named sites "
            "are forgotten");
    }
}

}  // namespace

const std::vector<CommandRow>& siteCommands() {
    static const std::vector<CommandRow> rows{
        {"sites",
         Command::sites,
         "list what each site left in the browsers",
         {{"browsersweep sites", "every site, those that take the most room first"},
          {"browsersweep sites --kind cookies --older-than 30d --sort last",
           "the sites with cookies that have not been used for thirty days"}},
         sitesNotes},
        {"forget",
         Command::forget,
         "remove everything that sites left, and report what stays",
         {{"browsersweep forget example.com", "one site, after asking"},
          {"browsersweep forget --all --keep example.com --dry-run",
           "what forgetting every site but one would remove"}},
         forgetNotes,
         "SITE... | --all"},
    };
    return rows;
}

const std::vector<OptionRow>& siteOptions() {
    static const std::vector<OptionRow> rows(optionRows.begin(), optionRows.end());
    return rows;
}

void requireSites(const Options& options) {
    if (options.command == Command::forget) {
        requireSitesToForget(options.sites);
    }
}

std::optional<std::string> nameOfSite(const std::string& text) {
    return faultOfSite(text).empty() ? std::optional(Site::ofText(text).value().name())
                                     : std::nullopt;
}

void readKeepList(SiteOptions& options) {
    if (!options.keepList) {
        return;
    }
    std::ifstream file(*options.keepList, std::ios::binary);
    std::error_code error;
    if (!file.is_open() || std::filesystem::is_directory(*options.keepList, error)) {
        throw UsageError(
            fmt::format("{} cannot be read; give --keep-list a file with one site per "
                        "line",
                        printable(options.keepList->string())));
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const auto sites = sitesInList(text, *options.keepList);
    options.kept.insert(options.kept.end(), sites.begin(), sites.end());
}

}  // namespace browsersweep::cli
