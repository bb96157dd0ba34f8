#include "cli/TextReport.h"

#include <cstddef>
#include <variant>

#include "cli/EntryText.h"
#include "cli/SiteText.h"
#include "cli/SizesText.h"
#include "cli/Table.h"
#include "cli/UnseenText.h"

namespace browsersweep::cli {
namespace {

constexpr std::size_t leastName = 8;
constexpr std::size_t leastAddress = 12;

std::string nameOf(Browser browser) {
    return std::string(displayName(browser));
}

std::string yesOrNothing(bool value) {
    return value ? "yes" : "";
}

std::string peopleTextOf(const BrowsersReport& report, const Appearance& appearance) {
    Table table({{"Name", Alignment::left, leastName},
                 {"Browser"},
                 {"Bundle identifier", Alignment::left, leastName, 1}});
    for (const auto& row : report.browsers) {
        table.addRow({row.displayName, std::string(rawValue(row.browser)), row.bundleIdentifier});
    }
    return table.text(appearance);
}

std::string peopleTextOf(const ProfilesReport& report, const Appearance& appearance) {
    Table table({{"Browser", Alignment::left, leastName},
                 {"Profile", Alignment::left, leastName},
                 {"Folder", Alignment::left, leastName},
                 {"Primary", Alignment::left, 0, 1}});
    for (const auto& row : report.browsers) {
        for (const auto& profile : row.profiles) {
            table.addRow({nameOf(row.browser), profile.name.value_or("(no name)"),
                          profile.folder.value_or(""), yesOrNothing(profile.isPrimary)});
        }
    }
    return table.text(appearance);
}

std::string peopleTextOf(const BookmarksReport& report, const Appearance& appearance) {
    Table table({{"Browser", Alignment::left, leastName, 1},
                 {"Name", Alignment::left, leastName},
                 {"Address", Alignment::left, leastAddress}});
    for (const auto& row : report.browsers) {
        for (const auto& bookmark : row.bookmarks) {
            table.addRow(
                {nameOf(row.browser), bookmark.name.value_or(""), bookmark.url.absoluteString()});
        }
    }
    return table.text(appearance);
}

std::string peopleTextOf(const NotificationsReport& report, const Appearance& appearance) {
    Table table({{"Browser", Alignment::left, leastName},
                 {"Profile", Alignment::left, leastName, 1},
                 {"Site", Alignment::left, leastAddress},
                 {"Stored in", Alignment::left, leastAddress, 2, Cut::front}});
    for (const auto& row : report.browsers) {
        for (const auto& part : row.profiles) {
            for (const auto& subscription : part.subscriptions) {
                table.addRow({nameOf(row.browser), displayName(part.profile),
                              subscription.sourceURL, subscription.store.string()});
            }
        }
    }
    return table.text(appearance);
}

/** Writes whichever report it is; only that of sizes can be shown in more than one way. */
struct Writer {
    const Appearance& appearance;
    const SizesView& view;

    std::string operator()(const SizesReport& report) const {
        return sizesText(report, view, appearance) + filtersText(report, appearance) +
               entriesText(report, appearance);
    }
    std::string operator()(const SiteListReport& report) const {
        return peopleText(report, appearance);
    }
    std::string operator()(const ForgetReport& report) const {
        return peopleText(report, appearance);
    }
    template <typename AnyReport>
    std::string operator()(const AnyReport& report) const {
        return peopleTextOf(report, appearance);
    }
};

}  // namespace

std::string peopleText(const Report& report, const Appearance& appearance, const SizesView& view) {
    return std::visit(Writer{appearance, view}, report);
}

}  // namespace browsersweep::cli
