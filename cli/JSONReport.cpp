#include "cli/JSONReport.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/JSONValues.h"
#include "cli/SiteJSON.h"

namespace browsersweep::cli {
namespace {

using cli::toJSON;  // beside those of this file

JSON toJSON(const BrowsersReport& report) {
    return {{"browsers", listOf(report.browsers, [](const BrowserRow& row) {
                 return JSON{{"browser", rawValue(row.browser)},
                             {"displayName", row.displayName},
                             {"bundleIdentifier", row.bundleIdentifier}};
             })}};
}

JSON toJSON(const ProfileRow& profile) {
    return {{"name", orNull(profile.name)},
            {"isPrimary", profile.isPrimary},
            {"folder", orNull(profile.folder)}};
}

JSON toJSON(const std::vector<LeftOutProfile>& leftOut) {
    return listOf(leftOut, [](const LeftOutProfile& each) {
        return JSON{{"name", orNull(each.profile.name)},
                    {"folder", orNull(each.profile.folder)},
                    {"why", each.why}};
    });
}

JSON toJSON(const ProfilesReport& report) {
    return {{"browsers", listOf(report.browsers, [](const BrowserProfiles& row) {
                 return JSON{{"browser", rawValue(row.browser)},
                             {"error", orNull(row.error)},
                             {"leftOut", toJSON(row.leftOut)},
                             {"profiles", listOf(row.profiles, [](const ProfileRow& profile) {
                                  return toJSON(profile);
                              })}};
             })}};
}

/** A figure under the key of the command; beside what was removed stands what the disk gained. */
void addFigure(JSON& object, Measure measure, const std::optional<CleanableDataSize>& size,
               std::int64_t freedBytes) {
    if (measure == Measure::present) {
        object["size"] = toJSON(size);
        return;
    }
    object["removed"] = toJSON(size);
    object["freedBytes"] = freedBytes;
}

JSON toJSON(const UnseenRow& unseen) {
    JSON parts = JSON::array();
    for (const auto& [name, isBlind] : {std::pair("include", unseen.blindTo.inclusions),
                                        std::pair("exclude", unseen.blindTo.exclusions),
                                        std::pair("dates", unseen.blindTo.dates)}) {
        if (isBlind) {
            parts.push_back(name);
        }
    }
    return {{"filters", parts}, {"tables", unseen.tables}, {"size", toJSON(unseen.size)}};
}

JSON toJSON(const ItemEntry& entry) {
    return {{"what", entry.path.string()},
            {"table", entry.table.empty() ? JSON(nullptr) : JSON(entry.table)},
            {"itemCount", toJSON(entry.items)},
            {"byteCount", entry.bytes ? toJSON(*entry.bytes) : JSON(nullptr)}};
}

JSON toJSON(const ItemRow& item, Measure measure) {
    JSON object{{"profile", orNull(item.profile)},
                {"folder", orNull(item.folder)},
                {"what", item.what},
                {"verdict", rawValue(item.verdict)},
                {"detail", orNull(item.detail)}};
    addFigure(object, measure, item.size, item.freedBytes);
    if (item.unseen) {
        object["unseen"] = toJSON(*item.unseen);
    }
    if (item.entries) {
        object["entries"] =
            listOf(*item.entries, [](const ItemEntry& entry) { return toJSON(entry); });
    }
    return object;
}

JSON toJSON(const CategorySize& part, Measure measure) {
    JSON object{{"category", rawValue(part.category)}, {"error", orNull(part.error)}};
    addFigure(object, measure, part.size, part.freedBytes);
    object["requiresClosedBrowserToClean"] = part.requiresClosedBrowserToClean;
    object["items"] =
        listOf(part.items, [measure](const ItemRow& item) { return toJSON(item, measure); });
    return object;
}

JSON toJSON(const ProfileSizes& profile, Measure measure) {
    auto object = toJSON(profile.profile);
    addFigure(object, measure, sumOf(profile.categories), profile.freedBytes);
    object["categories"] = listOf(profile.categories, [measure](const CategorySize& part) {
        JSON own{{"category", rawValue(part.category)}, {"error", orNull(part.error)}};
        addFigure(own, measure, part.size, part.freedBytes);
        return own;
    });
    return object;
}

JSON toJSON(const BrowserSizes& row, Measure measure) {
    JSON object{{"browser", rawValue(row.browser)}, {"error", orNull(row.error)}};
    addFigure(object, measure, row.size, row.freedBytes);
    object["requiresClosedBrowserToClean"] = row.requiresClosedBrowserToClean;
    object["leftOut"] = toJSON(row.leftOut);
    object["categories"] = listOf(
        row.categories, [measure](const CategorySize& part) { return toJSON(part, measure); });
    object["profiles"] = listOf(
        row.profiles, [measure](const ProfileSizes& profile) { return toJSON(profile, measure); });
    return object;
}

JSON toJSON(const SizesReport& report) {
    JSON object = JSON::object();
    if (report.measure != Measure::present) {
        object["dryRun"] = report.measure == Measure::wouldBeRemoved;
    }
    object["total"] = toJSON(report.total);
    if (report.unseen) {
        object["unseen"] = {{"isTaken", report.unseen->isTaken},
                            {"size", toJSON(report.unseen->size)}};
    }
    if (report.keep) {
        object["keepList"] = toJSON(*report.keep);
    }
    object["browsers"] = listOf(report.browsers, [&report](const BrowserSizes& row) {
        return toJSON(row, report.measure);
    });
    return object;
}

JSON toJSON(const BookmarksReport& report) {
    return {{"browsers", listOf(report.browsers, [](const BrowserBookmarks& row) {
                 return JSON{{"browser", rawValue(row.browser)},
                             {"error", orNull(row.error)},
                             {"leftOut", toJSON(row.leftOut)},
                             {"bookmarks", listOf(row.bookmarks, [](const Bookmark& bookmark) {
                                  return JSON{{"name", orNull(bookmark.name)},
                                              {"url", bookmark.url.absoluteString()}};
                              })}};
             })}};
}

JSON toJSON(const SubscriptionRow& row) {
    return {{"sourceURL", row.sourceURL}, {"store", row.store.string()}};
}

JSON toJSON(const ProfileSubscriptions& part) {
    return {{"name", orNull(part.profile.name)},
            {"isPrimary", part.profile.isPrimary},
            {"error", orNull(part.error)},
            {"subscriptions",
             listOf(part.subscriptions, [](const SubscriptionRow& row) { return toJSON(row); })}};
}

JSON toJSON(const NotificationsReport& report) {
    return {{"browsers", listOf(report.browsers, [](const BrowserNotifications& row) {
                 return JSON{
                     {"browser", rawValue(row.browser)},
                     {"error", orNull(row.error)},
                     {"leftOut", toJSON(row.leftOut)},
                     {"profiles", listOf(row.profiles, [](const ProfileSubscriptions& part) {
                          return toJSON(part);
                      })}};
             })}};
}

struct TextOfReport {
    template <typename AnyReport>
    std::string operator()(const AnyReport& report) const {
        return documentText(toJSON(report));
    }
    std::string operator()(const SiteListReport& report) const { return jsonText(report); }
    std::string operator()(const ForgetReport& report) const { return jsonText(report); }
};

}  // namespace

std::string jsonText(const Report& report) {
    return std::visit(TextOfReport(), report);
}

}  // namespace browsersweep::cli
