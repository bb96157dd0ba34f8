#include "cli/JSONReport.h"

#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/Text.h"

namespace browsersweep::cli {
namespace {

using JSON = nlohmann::ordered_json;

template <typename Value>
JSON orNull(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON(nullptr);
}

JSON toJSON(const CleanableDataSize::Measurement& measurement) {
    return {{"value", measurement.value}, {"isApproximate", measurement.isApproximate}};
}

JSON toJSON(const CleanableDataSize& size) {
    return {{"itemCount", toJSON(size.itemCount)}, {"byteCount", toJSON(size.byteCount)}};
}

JSON toJSON(const std::optional<CleanableDataSize>& size) {
    return size ? toJSON(*size) : JSON(nullptr);
}

template <typename Rows, typename ToJSON>
JSON listOf(const Rows& rows, const ToJSON& rowToJSON) {
    JSON list = JSON::array();
    for (const auto& row : rows) {
        list.push_back(rowToJSON(row));
    }
    return list;
}

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

JSON toJSON(const CategorySize& part, const char* sizeKey) {
    return {{"category", rawValue(part.category)},
            {"error", orNull(part.error)},
            {sizeKey, toJSON(part.size)},
            {"requiresClosedBrowserToClean", part.requiresClosedBrowserToClean}};
}

JSON toJSON(const BrowserSizes& row, const char* sizeKey) {
    return {{"browser", rawValue(row.browser)},
            {"error", orNull(row.error)},
            {sizeKey, toJSON(row.size)},
            {"requiresClosedBrowserToClean", row.requiresClosedBrowserToClean},
            {"leftOut", toJSON(row.leftOut)},
            {"categories", listOf(row.categories, [sizeKey](const CategorySize& part) {
                 return toJSON(part, sizeKey);
             })}};
}

JSON toJSON(const SizesReport& report) {
    const char* const sizeKey = report.measure == Measure::present ? "size" : "removed";
    JSON object = JSON::object();
    if (report.measure != Measure::present) {
        object["dryRun"] = report.measure == Measure::wouldBeRemoved;
    }
    object["total"] = toJSON(report.total);
    object["browsers"] = listOf(
        report.browsers, [sizeKey](const BrowserSizes& row) { return toJSON(row, sizeKey); });
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

}  // namespace

std::string jsonText(const Report& report) {
    constexpr int indentation = 2;
    const JSON document = std::visit([](const auto& any) { return toJSON(any); }, report);
    return escapedDocument(document.dump(indentation, ' ', false, JSON::error_handler_t::replace) +
                           "\n");
}

}  // namespace browsersweep::cli
