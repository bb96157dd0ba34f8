#include "cli/Report.h"

#include <string_view>
#include <utility>

namespace browsersweep::cli {
namespace {

using Failures = std::vector<Failure>;

/** Adds what failed of a browser as a whole, or of a part of it. */
void add(Browser browser, std::string_view part, const std::optional<std::string>& error,
         Failures& found) {
    if (error) {
        std::string where(displayName(browser));
        if (!part.empty()) {
            where.append(", ").append(part);
        }
        found.push_back({browser, std::move(where), *error});
    }
}

/** Adds the profiles that nothing was done with, each with the folder that it claims. */
void addLeftOut(Browser browser, const std::vector<LeftOutProfile>& leftOut, Failures& found) {
    for (const auto& each : leftOut) {
        add(browser, displayName(each.profile),
            "left out, " + each.why + ": \"" + each.profile.folder.value_or("") + "\"", found);
    }
}

void addLeftOut(Browser browser, const CategorySize& part, Failures& found) {
    for (const auto& each : part.leftOut) {
        add(browser, displayName(part.category),
            "left out, " + each.why + ": " + each.folder.string(), found);
    }
}

void addParts(const BrowserProfiles& /*row*/, Failures& /*found*/) {}
void addParts(const BrowserBookmarks& /*row*/, Failures& /*found*/) {}

void addParts(const BrowserSizes& row, Failures& found) {
    for (const auto& part : row.categories) {
        add(row.browser, displayName(part.category), part.error, found);
        addLeftOut(row.browser, part, found);
    }
}

void addParts(const BrowserNotifications& row, Failures& found) {
    for (const auto& part : row.profiles) {
        add(row.browser, displayName(part.profile), part.error, found);
    }
}

struct Collect {
    Failures& found;

    void operator()(const BrowsersReport& /*report*/) const {}

    template <typename AnyReport>
    void operator()(const AnyReport& report) const {
        for (const auto& row : report.browsers) {
            add(row.browser, {}, row.error, found);
            addLeftOut(row.browser, row.leftOut, found);
            addParts(row, found);
        }
    }
};

}  // namespace

std::vector<std::string_view> namesOfEmptyBrowsers(const SizesReport& report) {
    std::vector<std::string_view> names;
    for (const auto& row : report.browsers) {
        if (!row.error && row.categories.empty()) {
            names.push_back(displayName(row.browser));
        }
    }
    return names;
}

std::vector<Failure> failures(const Report& report) {
    Failures found;
    std::visit(Collect{found}, report);
    return found;
}

std::string displayName(const ProfileRow& profile) {
    return profile.name.value_or("(no name)");
}

}  // namespace browsersweep::cli
