#include "cli/sites/SiteNames.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/ListLines.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
std::string faultOfSite(const std::string& text) {
    if (isWellFormed(text) && Site::ofText(text)) {
        return {};
    }
    return fmt::format("'{}' is not a site; write a name such as example.com", printable(text));
}

std::set<Site> sitesNamed(const std::vector<std::string>& texts) {
    std::set<Site> sites;
    for (const auto& text : texts) {
        sites.insert(Site::ofText(text).value());
    }
    return sites;
}

std::string remarkOn(const std::string& text) {
    const auto site = Site::ofText(text).value();
    std::string small = text;
    std::transform(small.begin(), small.end(), small.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return small == site.name() ? ""
                                : fmt::format("{} means all of {}", printable(text), site.name());
}

std::string remarkOnMissing(const Site& site, const std::set<Site>& found, bool isAllSeen) {
    std::vector<std::string_view> names;
    names.reserve(found.size());
    for (const Site& each : found) {
        names.push_back(each.name());
    }
    const auto meant = names.empty() ? std::nullopt : closest(site.name(), names);
    return fmt::format("nothing of {} was found{}{}", site.name(),
                       isAllSeen ? "" : " where the program could look",
                       meant ? fmt::format("; did you mean {}?", *meant) : "");
}

std::vector<std::string> sitesInList(std::string_view text, const std::filesystem::path& file) {
    std::vector<std::string> sites;
    for (const ListLine& line : listLines(text)) {
        if (const auto fault = faultOfSite(line.text); !fault.empty()) {
            throw UsageError(
                fmt::format("{}, line {}: {}", printable(file.string()), line.number, fault));
        }
        sites.push_back(line.text);
    }
    return sites;
}

}  // namespace browsersweep::cli
