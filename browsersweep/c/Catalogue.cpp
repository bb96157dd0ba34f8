// The part of the C interface that names and lists: browsers, categories, homes, profiles,
// bookmarks and the sites that may send notifications.

#include "browsersweep/c/internal/Handles.h"
#include "browsersweep/catalogue/BrowserCleaners.h"

namespace bs = browsersweep;
using namespace browsersweep::c;

namespace {

void append(browsersweep_notifications& notifications, const bs::BrowserProfile& profile) {
    for (const auto& subscription : profile.notificationSubscriptions()) {
        notifications.entries.push_back(
            {subscription->sourceURL().absoluteString(), subscription->store().string()});
    }
}

}  // namespace

const char* browsersweep_version(void) {
    return BROWSERSWEEP_VERSION;
}

browsersweep_error_kind browsersweep_error_get_kind(const browsersweep_error* error) {
    return error == nullptr ? BROWSERSWEEP_ERROR_INVALID_ARGUMENT : error->kind;
}

const char* browsersweep_error_text(const browsersweep_error* error) {
    return error == nullptr ? "" : error->text.c_str();
}

void browsersweep_error_free(browsersweep_error* error) {
    takeBack(error);
}

size_t browsersweep_browser_count(void) {
    return bs::allBrowsers.size();
}

// The names of browsers and categories stand in tables of texts that end in a zero byte.
const char* browsersweep_browser_raw_value(browsersweep_browser browser) {
    return browser < bs::allBrowsers.size() ? bs::rawValue(bs::allBrowsers[browser]).data()
                                            : nullptr;
}

const char* browsersweep_browser_display_name(browsersweep_browser browser) {
    return browser < bs::allBrowsers.size() ? bs::displayName(bs::allBrowsers[browser]).data()
                                            : nullptr;
}

const char* browsersweep_browser_bundle_identifier(browsersweep_browser browser) {
    return browser < bs::allBrowsers.size() ? bs::bundleIdentifier(bs::allBrowsers[browser]).data()
                                            : nullptr;
}

bool browsersweep_browser_from_raw_value(const char* text, browsersweep_browser* browser) {
    if (text == nullptr || browser == nullptr) {
        return false;
    }
    const auto found = bs::browserFromRawValue(text);
    if (found) {
        *browser = static_cast<browsersweep_browser>(*found);
    }
    return found.has_value();
}

size_t browsersweep_category_count(void) {
    return bs::allCleanableDataCategories.size();
}

const char* browsersweep_category_raw_value(browsersweep_category category) {
    const auto index = static_cast<std::size_t>(category);
    return index < bs::allCleanableDataCategories.size()
               ? bs::rawValue(bs::allCleanableDataCategories[index]).data()
               : nullptr;
}

const char* browsersweep_category_display_name(browsersweep_category category) {
    const auto index = static_cast<std::size_t>(category);
    return index < bs::allCleanableDataCategories.size()
               ? bs::displayName(bs::allCleanableDataCategories[index]).data()
               : nullptr;
}

bool browsersweep_category_from_raw_value(const char* text, browsersweep_category* category) {
    if (text == nullptr || category == nullptr) {
        return false;
    }
    const auto found = bs::cleanableDataCategoryFromRawValue(text);
    if (found) {
        *category = static_cast<browsersweep_category>(*found);
    }
    return found.has_value();
}

browsersweep_home* browsersweep_home_current(browsersweep_error** error) {
    return guarded(error, [] { return handedOver(browsersweep_home{std::nullopt}); });
}

browsersweep_home* browsersweep_home_at(const char* path, browsersweep_error** error) {
    return guarded(error, [&] { return handedOver(browsersweep_home{&required(path, "path")}); });
}

void browsersweep_home_free(browsersweep_home* home) {
    takeBack(home);
}

browsersweep_profiles* browsersweep_profiles_read(const browsersweep_home* home,
                                                  browsersweep_browser browser,
                                                  browsersweep_error** error) {
    return guarded(error, [&] {
        browsersweep_profiles profiles;
        profiles.control = std::make_shared<bs::OperationControl>();
        for (const auto& profile :
             cleanerOf(home, browser, profiles.control)->profileReader().profiles()) {
            profiles.entries.push_back({profile, profile->name()});
        }
        return handedOver(std::move(profiles));
    });
}

size_t browsersweep_profiles_count(const browsersweep_profiles* profiles) {
    return profiles == nullptr ? 0 : profiles->entries.size();
}

const char* browsersweep_profiles_name(const browsersweep_profiles* profiles, size_t index) {
    const auto* const entry = profiles == nullptr ? nullptr : entryAt(&profiles->entries, index);
    return entry == nullptr ? nullptr : textOf(entry->name);
}

bool browsersweep_profiles_is_primary(const browsersweep_profiles* profiles, size_t index) {
    const auto* const entry = profiles == nullptr ? nullptr : entryAt(&profiles->entries, index);
    return entry != nullptr && entry->profile->isPrimary();
}

void browsersweep_profiles_free(browsersweep_profiles* profiles) {
    takeBack(profiles);
}

browsersweep_bookmarks* browsersweep_bookmarks_of_browser(const browsersweep_home* home,
                                                          browsersweep_browser browser,
                                                          browsersweep_error** error) {
    return guarded(error, [&] {
        return handedOver(
            browsersweep_bookmarks{cleanerOf(home, browser)->bookmarks(everyProfile)});
    });
}

browsersweep_bookmarks* browsersweep_bookmarks_of_profile(const browsersweep_profiles* profiles,
                                                          size_t index,
                                                          browsersweep_error** error) {
    return guarded(error, [&] {
        return handedOver(browsersweep_bookmarks{profileAt(profiles, index)->bookmarks()});
    });
}

size_t browsersweep_bookmarks_count(const browsersweep_bookmarks* bookmarks) {
    return bookmarks == nullptr ? 0 : bookmarks->list.size();
}

const char* browsersweep_bookmarks_name(const browsersweep_bookmarks* bookmarks, size_t index) {
    const auto* const entry = bookmarks == nullptr ? nullptr : entryAt(&bookmarks->list, index);
    return entry == nullptr ? nullptr : textOf(entry->name);
}

const char* browsersweep_bookmarks_url(const browsersweep_bookmarks* bookmarks, size_t index) {
    const auto* const entry = bookmarks == nullptr ? nullptr : entryAt(&bookmarks->list, index);
    return entry == nullptr ? nullptr : entry->url.absoluteString().c_str();
}

void browsersweep_bookmarks_free(browsersweep_bookmarks* bookmarks) {
    takeBack(bookmarks);
}

browsersweep_notifications* browsersweep_notifications_of_browser(const browsersweep_home* home,
                                                                  browsersweep_browser browser,
                                                                  browsersweep_error** error) {
    return guarded(error, [&] {
        browsersweep_notifications notifications;
        for (const auto& profile : cleanerOf(home, browser)->profileReader().profiles()) {
            append(notifications, *profile);
        }
        return handedOver(std::move(notifications));
    });
}

browsersweep_notifications* browsersweep_notifications_of_profile(
    const browsersweep_profiles* profiles, size_t index, browsersweep_error** error) {
    return guarded(error, [&] {
        browsersweep_notifications notifications;
        append(notifications, *profileAt(profiles, index));
        return handedOver(std::move(notifications));
    });
}

size_t browsersweep_notifications_count(const browsersweep_notifications* notifications) {
    return notifications == nullptr ? 0 : notifications->entries.size();
}

const char* browsersweep_notifications_source_url(const browsersweep_notifications* notifications,
                                                  size_t index) {
    const auto* const entry =
        notifications == nullptr ? nullptr : entryAt(&notifications->entries, index);
    return entry == nullptr ? nullptr : entry->sourceURL.c_str();
}

const char* browsersweep_notifications_store(const browsersweep_notifications* notifications,
                                             size_t index) {
    const auto* const entry =
        notifications == nullptr ? nullptr : entryAt(&notifications->entries, index);
    return entry == nullptr ? nullptr : entry->store.c_str();
}

void browsersweep_notifications_free(browsersweep_notifications* notifications) {
    takeBack(notifications);
}
