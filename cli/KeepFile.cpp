#include "cli/KeepFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "browsersweep/hosting/PatternFault.h"

#include "cli/ListLines.h"
#include "cli/Names.h"
#include "cli/Options.h"
#include "cli/SiteCommands.h"
#include "cli/SmallFile.h"
#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

constexpr const char* place = "Library/Application Support/browsersweep/keep.conf";

bool isLink(const std::filesystem::path& path) noexcept {
    std::error_code ignored;
    return std::filesystem::is_symlink(std::filesystem::symlink_status(path, ignored));
}

[[noreturn]] void refuse(const std::filesystem::path& file, std::string_view reason) {
    throw UsageError(
        fmt::format("the keep list {} {} (nothing was deleted; --no-config ignores it)",
                    printable(file.string()), reason));
}

std::string faultOfRule(std::string_view keyword, const std::string& value, KeepRules& rules) {
    if (keyword == "site") {
        const auto name = nameOfSite(value);
        rules.sites.push_back(name.value_or(""));
        return name ? "" : fmt::format("'{}' is not a site", printable(value));
    }
    if (keyword == "browser") {
        const auto browser = browserNamed(value);
        rules.browsers.push_back(browser.value_or(allBrowsers.front()));
        return browser ? "" : fmt::format("'{}' is not a browser", printable(value));
    }
    if (keyword == "category") {
        const auto category = categoryNamed(value);
        rules.categories.push_back(category.value_or(CleanableDataCategory::cache));
        return category ? "" : fmt::format("'{}' is not a category", printable(value));
    }
    return fmt::format("'{}' is not a rule; {}", printable(keyword),
                       suggestion(keyword, {"site", "browser", "category"}));
}

/** What is wrong with a line, which is added to the rules where nothing is. */
std::string addLine(std::string_view line, KeepRules& rules) {
    const std::string_view keyword = line.substr(0, line.find_first_of(listBlanks));
    line.remove_prefix(keyword.size());
    if (line.empty()) {
        return "write site, browser or category and a name, such as 'site example.com'";
    }
    line.remove_prefix(line.find_first_not_of(listBlanks));
    return faultOfRule(keyword, std::string(line), rules);
}

template <typename Value>
bool holds(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

/** In `clean` a site is kept by a filter, the last one, which decides among files. */
void keepByFilter(const KeepRules& rules, Options& options) {
    for (const std::string& site : rules.sites) {
        if (patternFault(site)) {
            refuse(rules.file,
                   fmt::format("has the site '{}', which no filter can be about", printable(site)));
        }
    }
    if (!rules.sites.empty()) {
        options.filters.emplace_back(CleanableDataFilter::Rule::exclude, rules.sites);
    }
}

void keepFromForgetting(const KeepRules& rules, Options& options) {
    for (const std::string& name : options.sites.names) {
        const auto site = nameOfSite(name);
        if (site && holds(rules.sites, *site)) {
            throw UsageError(fmt::format(
                "{} is kept by the keep list {}; take it off the list, or add --no-config",
                printable(*site), printable(rules.file.string())));
        }
    }
    options.sites.alwaysKept = rules.sites;
    options.sites.keptCategories = rules.categories;
}

template <typename Values>
void addNames(std::string_view what, const Values& names, std::vector<std::string>& parts) {
    if (!names.empty()) {
        parts.push_back(fmt::format("{} {}", what, fmt::join(names, ", ")));
    }
}

template <typename Value>
std::vector<std::string_view> displayNames(const std::vector<Value>& values) {
    std::vector<std::string_view> names;
    names.reserve(values.size());
    for (const Value value : values) {
        names.push_back(displayName(value));
    }
    return names;
}

}  // namespace

std::optional<KeepRules> readKeepFile(const std::filesystem::path& home) {
    constexpr std::size_t largest = 65536;
    const auto file = home / place;
    const SmallFile found = readSmallFile(file, largest);
    // A link that leads nowhere now, as to a disk that is away, is a list that cannot be read.
    if (found.error == ENOENT && !isLink(file) && !isLink(file.parent_path())) {
        return std::nullopt;
    }
    if (found.error != 0) {
        refuse(file, "cannot be read: " + std::generic_category().message(found.error));
    }
    if (!found.isRegularFile) {
        refuse(file, "is not a regular file");
    }
    if (found.isTooLarge) {
        refuse(file, "is larger than 64 KiB");
    }
    return parseKeepRules(found.text, file);
}

KeepRules parseKeepRules(std::string_view text, std::filesystem::path file) {
    KeepRules rules;
    rules.file = std::move(file);
    if (!isWellFormed(text) || text.find('\0') != std::string_view::npos) {
        refuse(rules.file, "is not UTF-8 text");
    }
    for (const ListLine& line : listLines(text)) {
        if (const auto fault = addLine(line.text, rules); !fault.empty()) {
            refuse(rules.file, fmt::format("is wrong in line {}: {}", line.number, fault));
        }
    }
    return rules;
}

void keep(const KeepRules& rules, Options& options) {
    options.selection.keptBrowsers = rules.browsers;
    options.selection.keptCategories = rules.categories;
    if (options.command == Command::clean) {
        keepByFilter(rules, options);
    } else {
        keepFromForgetting(rules, options);
    }
}

std::string keepText(const KeepRules& rules) {
    std::vector<std::string> parts;
    addNames("sites", rules.sites, parts);
    addNames("browsers", displayNames(rules.browsers), parts);
    addNames("categories", displayNames(rules.categories), parts);
    return fmt::format("left alone because of {}: {} (--no-config ignores it)", rules.file.string(),
                       fmt::join(parts, "; "));
}

}  // namespace browsersweep::cli
