#include "cli/Report.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace browsersweep::cli {
namespace {

using Failures = std::vector<Failure>;

void add(const std::string& where, const std::optional<std::string>& error, Failures& found) {
    if (error) {
        found.push_back({where, *error});
    }
}

std::string place(Browser browser, std::string_view part) {
    return std::string(displayName(browser)) + ", " + std::string(part);
}

void addParts(const BrowserProfiles& /*row*/, Failures& /*found*/) {}
void addParts(const BrowserBookmarks& /*row*/, Failures& /*found*/) {}

void addParts(const BrowserSizes& row, Failures& found) {
    for (const auto& part : row.categories) {
        add(place(row.browser, displayName(part.category)), part.error, found);
    }
}

void addParts(const BrowserNotifications& row, Failures& found) {
    for (const auto& part : row.profiles) {
        add(place(row.browser, displayName(part.profile)), part.error, found);
    }
}

struct Collect {
    Failures& found;

    void operator()(const BrowsersReport& /*report*/) const {}

    template <typename AnyReport>
    void operator()(const AnyReport& report) const {
        for (const auto& row : report.browsers) {
            add(std::string(displayName(row.browser)), row.error, found);
            addParts(row, found);
        }
    }
};

constexpr std::array<std::string_view, allCleanableDataCategories.size()> categoryNames{
    "Cache", "History", "Cookies", "Flash cookies", "Form data", "Local storage",
};

}  // namespace

std::vector<Failure> failures(const Report& report) {
    Failures found;
    std::visit(Collect{found}, report);
    return found;
}

std::string_view displayName(CleanableDataCategory category) noexcept {
    return categoryNames[static_cast<std::size_t>(category)];
}

std::string displayName(const ProfileRow& profile) {
    return profile.name.value_or("(no name)");
}

}  // namespace browsersweep::cli
