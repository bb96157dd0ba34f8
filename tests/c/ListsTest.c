#include <stddef.h>
#include <string.h>

#include "browsersweep/c/browsersweep.h"

#include "Rules.h"

static void profiles(const browsersweep_home* home, browsersweep_browser browser) {
    browsersweep_error* error = NULL;
    browsersweep_profiles* list = browsersweep_profiles_read(home, browser, &error);
    rule("the profiles are read", list != NULL && error == NULL);
    rule("there are two", browsersweep_profiles_count(list) == 2);
    rule("the first has its name", same(browsersweep_profiles_name(list, 0), "Personal"));
    rule("the second has its name", same(browsersweep_profiles_name(list, 1), "Work"));
    rule("the first is primary", browsersweep_profiles_is_primary(list, 0));
    rule("the second is not", !browsersweep_profiles_is_primary(list, 1));
    rule("there is no third",
         browsersweep_profiles_name(list, 2) == NULL && !browsersweep_profiles_is_primary(list, 2));

    browsersweep_bookmarks* bookmarks = browsersweep_bookmarks_of_profile(list, 1, &error);
    browsersweep_notifications* sites = browsersweep_notifications_of_profile(list, 1, &error);
    browsersweep_profiles_free(list);
    rule("bookmarks live without their profile", browsersweep_bookmarks_count(bookmarks) == 2);
    rule("they are that profile's",
         same(browsersweep_bookmarks_name(bookmarks, 1), "News of Work"));
    rule("sites live without their profile", browsersweep_notifications_count(sites) == 1);
    rule("the permission is in that profile's file",
         strstr(browsersweep_notifications_store(sites, 0), "/Profile 1/Preferences") != NULL);
    browsersweep_bookmarks_free(bookmarks);
    browsersweep_notifications_free(sites);
}

static void bookmarks(const browsersweep_home* home, browsersweep_browser browser) {
    browsersweep_bookmarks* list = browsersweep_bookmarks_of_browser(home, browser, NULL);
    rule("a browser's bookmarks are those of all profiles",
         browsersweep_bookmarks_count(list) == 4);
    rule("a bookmark has a title", same(browsersweep_bookmarks_name(list, 0), "Example"));
    rule("a bookmark has an address",
         same(browsersweep_bookmarks_url(list, 0), "https://www.example.com/"));
    rule("there is no fifth", browsersweep_bookmarks_name(list, 4) == NULL &&
                                  browsersweep_bookmarks_url(list, 4) == NULL);
    browsersweep_bookmarks_free(list);
}

static void untitled(const browsersweep_home* home) {
    browsersweep_browser firefox = 0;
    browsersweep_browser_from_raw_value("firefox", &firefox);
    browsersweep_bookmarks* list = browsersweep_bookmarks_of_browser(home, firefox, NULL);
    rule("a bookmark without a title has NULL", browsersweep_bookmarks_count(list) > 1 &&
                                                    browsersweep_bookmarks_name(list, 1) == NULL &&
                                                    browsersweep_bookmarks_url(list, 1) != NULL);
    browsersweep_bookmarks_free(list);
}

static void notifications(const browsersweep_home* home, browsersweep_browser browser) {
    browsersweep_notifications* list = browsersweep_notifications_of_browser(home, browser, NULL);
    rule("a browser's sites are those of all profiles",
         browsersweep_notifications_count(list) == 2);
    rule("a site has an address",
         same(browsersweep_notifications_source_url(list, 0), "https://mail.example.com:443"));
    rule("there is no third", browsersweep_notifications_source_url(list, 2) == NULL &&
                                  browsersweep_notifications_store(list, 2) == NULL);
    browsersweep_notifications_free(list);
}

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_home* home = browsersweep_home_at(arguments[1], NULL);
    profiles(home, chrome);
    bookmarks(home, chrome);
    untitled(home);
    notifications(home, chrome);
    browsersweep_home_free(home);

    browsersweep_home* nowhere = browsersweep_home_at("/nowhere/at/all", NULL);
    browsersweep_profiles* none = browsersweep_profiles_read(nowhere, chrome, NULL);
    rule("a home that is not there has no profiles",
         none != NULL && browsersweep_profiles_count(none) == 0);
    browsersweep_profiles_free(none);
    browsersweep_home_free(nowhere);
    return verdict();
}
