#include "cli/sites/SiteNames.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "cli/Suggestion.h"
#include "cli/Text.h"
#include "cli/UsageError.h"

namespace browsersweep::cli {
namespace {

constexpr std::string_view blanks = " \t\r\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) noexcept {
    const auto begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/**
 * Blanks, dots and marks that look like nothing or like ASCII, as they come along when a name is
 * copied: the name would be that of no site, and nothing would be found or kept of the one meant.
 */
bool hasUnseenMarks(std::string_view text) noexcept {
    constexpr std::array<std::string_view, 14> marks{
        "\u00A0", "\u00AD", "\u2000", "\u2002", "\u2003", "\u2009", "\u200B",
        "\u200E", "\u200F", "\u202F", "\u2060", "\u3000", "\u3002", "\uFF0E"};
    return std::any_of(marks.begin(), marks.end(), [text](std::string_view mark) {
        return text.find(mark) != std::string_view::npos;
    });
}

}  // namespace

std::string faultOfSite(const std::string& text) {
    if (isWellFormed(text) && !hasUnseenMarks(text) && Site::ofText(text)) {
        return {};
    }
    return fmt::format("'{}' is no site; write a name such as example.com", printable(text));
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
    return small == site.name() ? "" : fmt::format("{}: all of {}", printable(text), site.name());
}

std::string remarkOnMissing(const Site& site, const std::set<Site>& found, bool isAllSeen) {
    std::vector<std::string_view> names;
    names.reserve(found.size());
    for (const Site& each : found) {
        names.push_back(each.name());
    }
    const auto meant = names.empty() ? std::nullopt : closest(site.name(), names);
    return fmt::format("nothing of {} was found{}{}", site.name(),
                       isAllSeen ? "" : " where it could be looked",
                       meant ? fmt::format("; did you mean {}?", *meant) : "");
}

std::vector<std::string> sitesInList(std::string_view text, const std::filesystem::path& file) {
    std::vector<std::string> sites;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string line(trimmed(text.substr(0, std::min(end, text.find('#')))));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty()) {
            continue;
        }
        if (const auto fault = faultOfSite(line); !fault.empty()) {
            throw UsageError(
                fmt::format("{}, line {}: {}", printable(file.string()), number, fault));
        }
        sites.push_back(line);
    }
    return sites;
}

}  // namespace browsersweep::cli
