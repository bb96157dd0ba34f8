#include "cli/Report.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "browsersweep/hosting/FailureKind.h"

#include "cli/ProfileLabels.h"

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

/** Whether a text begins with what an error means. */
bool saysKind(std::string_view text) noexcept {
    constexpr std::array kinds{FailureKind::nothingThere, FailureKind::locked,
                               FailureKind::noPermission, FailureKind::notUnderstood,
                               FailureKind::cancelled};
    return std::any_of(kinds.begin(), kinds.end(),
                       [text](FailureKind kind) { return text.starts_with(displayName(kind)); });
}

/** The text with a path behind it, unless it names that already. */
std::string withPlace(std::string text, const std::string& what) {
    if (what.empty() || text.find(what) != std::string::npos) {
        return text;
    }
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text + ": " + what;
}

/** What became of an item or a store, with its file, each thing said once. */
std::string verdictText(ItemVerdict verdict, const std::optional<std::string>& detail,
                        const std::string& what) {
    std::string text = detail.value_or("");
    if (!saysKind(text)) {
        const std::string name(displayName(verdict));
        text = text.empty() ? name : name + ": " + text;
    }
    return withPlace(std::move(text), what);
}

/** Adds the items that something is wrong with; those that were never begun have no line. */
bool addItems(Browser browser, const CategorySize& part, Failures& found) {
    bool isAnyAdded = false;
    for (const ItemRow& item : part.items) {
        if (isSuccess(item.verdict) || !item.wasBegun) {
            continue;
        }
        const std::string profile =
            item.profile ? labelOf(*item.profile, item.folder, item.isNameShared) + ", " : "";
        add(browser, profile + std::string(displayName(part.category)),
            verdictText(item.verdict, item.detail, item.what), found);
        isAnyAdded |= item.verdict != ItemVerdict::leftOut;
    }
    return isAnyAdded;
}

/** Says how many items the first error of a category kept from their turn. */
void addNotBegun(Browser browser, const CategorySize& part, Failures& found) {
    const auto count = std::count_if(part.items.begin(), part.items.end(), [](const auto& item) {
        return item.verdict == ItemVerdict::leftOut && !item.wasBegun;
    });
    if (count > 0) {
        add(browser, displayName(part.category),
            "this ended the category, with " + std::to_string(count) +
                " items left out; --keep-going handles them",
            found);
    }
}

void addParts(const BrowserProfiles& /*row*/, Failures& /*found*/) {}
void addParts(const BrowserBookmarks& /*row*/, Failures& /*found*/) {}

void addParts(const BrowserSizes& row, Failures& found) {
    for (const auto& part : row.categories) {
        // Its error is that of an item, which tells more.
        if (!addItems(row.browser, part, found)) {
            add(row.browser, displayName(part.category), part.error, found);
        }
        addNotBegun(row.browser, part, found);
    }
}

void addParts(const BrowserNotifications& row, Failures& found) {
    for (const auto& part : row.profiles) {
        add(row.browser, displayName(part.profile), part.error, found);
    }
}

std::string nameOfOwner(const SiteOwner& owner) {
    return owner.profile ? labelOf(*owner.profile, owner.folder, owner.isNameShared)
                         : owner.folder.value_or("");
}

void addErrors(const std::vector<SiteErrorRow>& errors, Failures& found) {
    for (const auto& row : errors) {
        add(row.owner.browser, nameOfOwner(row.owner), withPlace(row.error, row.what.value_or("")),
            found);
    }
}

/** Adds the stores that something is wrong with; those that were never begun have no line. */
void addStores(const std::vector<StoreRow>& stores, Failures& found) {
    for (const auto& row : stores) {
        const bool hadNoTurn = row.verdict == ItemVerdict::cancelled && !row.detail;
        if (!isSuccess(row.verdict) && !hadNoTurn) {
            add(row.owner.browser, nameOfOwner(row.owner),
                verdictText(row.verdict, row.detail, row.what), found);
        }
    }
}

struct Collect {
    Failures& found;

    void operator()(const BrowsersReport& /*report*/) const {}

    void operator()(const SiteListReport& report) const { addErrors(report.errors, found); }

    void operator()(const ForgetReport& report) const {
        addErrors(report.errors, found);
        addStores(report.stores, found);
    }

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
    // What keeps a profile's stores from being seen is one fact, though each of them tells it.
    std::set<std::pair<std::string_view, std::string_view>> told;
    Failures once;
    std::copy_if(
        found.begin(), found.end(), std::back_inserter(once),
        [&told](const Failure& each) { return told.emplace(each.where, each.error).second; });
    return once;
}

std::string displayName(const ProfileRow& profile) {
    return labelOf(profile.name.value_or("(no name)"), profile.folder, profile.isNameShared);
}

std::optional<CleanableDataSize> sumOf(const std::vector<CategorySize>& parts) {
    std::optional<CleanableDataSize> sum;
    for (const auto& part : parts) {
        if (part.size) {
            sum = sum.value_or(CleanableDataSize::zero) + *part.size;
        }
    }
    return sum;
}

}  // namespace browsersweep::cli
