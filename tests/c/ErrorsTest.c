#include <stddef.h>
#include <stdio.h>

#include "browsersweep/c/browsersweep.h"

#include "Rules.h"

/** One error: its kind and a text. It is let go of. */
static void is_of_kind(const char* words, browsersweep_error_kind kind, browsersweep_error* error) {
    rule(words, error != NULL && browsersweep_error_get_kind(error) == kind &&
                    browsersweep_error_text(error)[0] != '\0');
    browsersweep_error_free(error);
}

static void wrong_arguments(const browsersweep_home* home) {
    const browsersweep_error_kind wrong = BROWSERSWEEP_ERROR_INVALID_ARGUMENT;
    browsersweep_error* error = NULL;
    rule("no path gives no home", browsersweep_home_at(NULL, &error) == NULL);
    is_of_kind("no path is a wrong argument", wrong, error);
    error = NULL;
    rule("no home gives no profiles", browsersweep_profiles_read(NULL, 0, &error) == NULL);
    is_of_kind("no home is a wrong argument", wrong, error);
    error = NULL;
    rule("a number beyond the browsers gives no data",
         browsersweep_data_of_browser(home, 13, &error) == NULL);
    is_of_kind("a number beyond the browsers is a wrong argument", wrong, error);
    error = NULL;
    browsersweep_profiles* profiles = browsersweep_profiles_read(home, 0, NULL);
    rule("an index beyond the profiles gives no data",
         browsersweep_data_of_profile(profiles, 99, &error) == NULL);
    browsersweep_profiles_free(profiles);
    is_of_kind("an index beyond the profiles is a wrong argument", wrong, error);
    error = NULL;
    rule("no data has no size",
         !browsersweep_data_size(NULL, 1, NULL, 0, NULL, NULL, NULL, &error));
    is_of_kind("no data is a wrong argument", wrong, error);
}

static void refused_patterns(void) {
    static const char* const refused[] = {"", "it's", "100%", "a_b", "a\nb", "\x7f", NULL};
    for (size_t i = 0; i < sizeof refused / sizeof refused[0]; ++i) {
        const browsersweep_patterns patterns = {sizeof patterns, true, &refused[i], 1};
        browsersweep_filters* filters = browsersweep_filters_new(NULL);
        browsersweep_error* error = NULL;
        rule("a pattern that would change a statement is refused",
             !browsersweep_filters_add(filters, &patterns, NULL, &error));
        is_of_kind("that is a wrong argument", BROWSERSWEEP_ERROR_INVALID_ARGUMENT, error);
        browsersweep_filters_free(filters);
    }
}

/** More patterns than a database takes are refused before anything is done. */
static void too_many_patterns(const browsersweep_home* home) {
    static char texts[1100][32];
    const char* list[1100];
    for (size_t i = 0; i < 1100; ++i) {
        snprintf(texts[i], sizeof texts[i], "x%zu.de", i);
        list[i] = texts[i];
    }
    const browsersweep_patterns patterns = {sizeof patterns, false, list, 1100};
    browsersweep_filters* filters = browsersweep_filters_new(NULL);
    rule("each pattern is fit", browsersweep_filters_add(filters, &patterns, NULL, NULL));
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_data* data = browsersweep_data_of_browser(home, chrome, NULL);
    browsersweep_size before = {sizeof before, 0, 0, false, false};
    browsersweep_size after = {sizeof after, -1, 0, false, false};
    browsersweep_data_size(data, BROWSERSWEEP_ALL_CATEGORIES, NULL, 0, NULL, NULL, &before, NULL);
    browsersweep_error* error = NULL;
    rule("too many patterns are refused",
         !browsersweep_data_clean(data, BROWSERSWEEP_ALL_CATEGORIES, filters,
                                  BROWSERSWEEP_IGNORE_ERRORS, NULL, NULL, NULL, &error));
    is_of_kind("that is a wrong argument", BROWSERSWEEP_ERROR_INVALID_ARGUMENT, error);
    browsersweep_data_size(data, BROWSERSWEEP_ALL_CATEGORIES, NULL, 0, NULL, NULL, &after, NULL);
    rule("nothing was deleted by then", before.items > 0 && after.items == before.items);
    browsersweep_data_free(data);
    browsersweep_filters_free(filters);
}

/** A structure whose size is not set is refused, before anything is read or deleted. */
static void structures_without_size(const browsersweep_home* home) {
    const browsersweep_error_kind wrong = BROWSERSWEEP_ERROR_INVALID_ARGUMENT;
    browsersweep_filters* filters = browsersweep_filters_new(NULL);
    const browsersweep_patterns patterns = {0};
    const browsersweep_dates dates = {sizeof dates - sizeof(double), false, false, false, 0, 0};
    browsersweep_error* error = NULL;
    rule("patterns without a size are refused",
         !browsersweep_filters_add(filters, &patterns, NULL, &error));
    is_of_kind("that is a wrong argument", wrong, error);
    error = NULL;
    rule("dates of too small a size are refused",
         !browsersweep_filters_add(filters, NULL, &dates, &error));
    is_of_kind("that is a wrong argument", wrong, error);
    browsersweep_filters_free(filters);

    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_data* data = browsersweep_data_of_browser(home, chrome, NULL);
    browsersweep_size size = {0, -1, -1, false, false};
    error = NULL;
    rule("a size without a size is refused",
         !browsersweep_data_size(data, 1, NULL, 0, NULL, NULL, &size, &error));
    is_of_kind("that is a wrong argument", wrong, error);
    error = NULL;
    rule("nothing is deleted for a result without a size",
         !browsersweep_data_clean(data, 1, NULL, 0, NULL, NULL, &size, &error));
    is_of_kind("that is a wrong argument", wrong, error);
    rule("such a result is left as it was", size.items == -1 && size.bytes == -1);
    browsersweep_plan* plan = browsersweep_plan_of_data(data, 1, NULL, 0, NULL, NULL, NULL);
    browsersweep_entry entry = {.struct_size = sizeof entry - sizeof(int64_t)};
    rule("an entry without a size is not filled",
         !browsersweep_plan_entry(plan, 0, &entry) && entry.path == NULL &&
             !browsersweep_plan_entry(plan, 0, NULL));
    browsersweep_plan_free(plan);
    size.struct_size = sizeof size;
    rule("there is still something to delete",
         browsersweep_data_size(data, 1, NULL, 0, NULL, NULL, &size, NULL) && size.items > 0);
    browsersweep_data_free(data);
}

/** Structures of a later version, which have fields that this one does not know. */
static void structures_of_later_versions(const browsersweep_home* home) {
    struct {
        browsersweep_size size;
        int64_t later;
    } grown = {{sizeof grown, -1, -1, true, true}, 7};
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_data* data = browsersweep_data_of_browser(home, chrome, NULL);
    rule("a size of a later version is filled as far as it is known",
         browsersweep_data_size(data, 1, NULL, 0, NULL, NULL, &grown.size, NULL) &&
             grown.size.items > 0 && !grown.size.items_are_approximate);
    rule("its size and what is not known are left as they were",
         grown.size.struct_size == sizeof grown && grown.later == 7);
    struct {
        browsersweep_entry entry;
        int64_t later;
    } larger = {{.struct_size = sizeof larger}, 7};
    browsersweep_plan* plan = browsersweep_plan_of_data(data, 1, NULL, 0, NULL, NULL, NULL);
    rule("so is an entry of a later version",
         browsersweep_plan_entry(plan, 0, &larger.entry) && larger.entry.path != NULL &&
             larger.entry.struct_size == sizeof larger && larger.later == 7);
    browsersweep_plan_free(plan);
    browsersweep_data_free(data);
}

/** Puts other contents into a file of Chrome's. */
static void break_file(const char* folder, const char* name) {
    char path[4096];
    snprintf(path, sizeof path, "%s/Library/Application Support/Google/Chrome/%s", folder, name);
    FILE* file = fopen(path, "w");
    rule("the file can be broken",
         file != NULL && fputs("neither JSON nor a database", file) >= 0 && fclose(file) == 0);
}

static void broken_database(const browsersweep_home* home, const char* folder) {
    break_file(folder, "Default/Cookies");
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_data* data = browsersweep_data_of_browser(home, chrome, NULL);
    const browsersweep_categories cookies = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HTTP_COOKIES);
    browsersweep_size size = {sizeof size, -1, -1, false, false};
    browsersweep_error* error = NULL;
    rule("a broken database cannot be measured",
         !browsersweep_data_size(data, cookies, NULL, 0, NULL, NULL, &size, &error));
    is_of_kind("that is an error of a database", BROWSERSWEEP_ERROR_DATABASE, error);
    rule("the size is left as it was", size.items == -1);
    error = NULL;
    rule("ignoring errors measures the rest",
         browsersweep_data_size(data, cookies, NULL, BROWSERSWEEP_IGNORE_ERRORS, NULL, NULL, &size,
                                &error));
    rule("then there is no error", error == NULL);
    rule("the other profile's cookies are there", size.items > 0);
    rule("the number is approximate", size.items_are_approximate);
    error = NULL;
    rule("a broken database cannot be listed",
         browsersweep_plan_of_data(data, cookies, NULL, 0, NULL, NULL, &error) == NULL);
    is_of_kind("that is an error of a database, too", BROWSERSWEEP_ERROR_DATABASE, error);
    browsersweep_plan* plan = browsersweep_plan_of_data(
        data, cookies, NULL, BROWSERSWEEP_IGNORE_ERRORS, NULL, NULL, NULL);
    browsersweep_entry entry = {.struct_size = sizeof entry};
    rule("ignoring errors it is an entry that is not known",
         browsersweep_plan_count(plan) == 2 && browsersweep_plan_entry(plan, 0, &entry) &&
             entry.items == 0 && entry.items_are_approximate && entry.path[0] == '/');
    browsersweep_plan_free(plan);
    rule("an option that means nothing is a wrong argument",
         !browsersweep_data_size(data, cookies, NULL, 4, NULL, NULL, &size, NULL));
    browsersweep_data_free(data);
}

static void broken_file(const browsersweep_home* home, const char* folder) {
    break_file(folder, "Local State");
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_error* error = NULL;
    rule("a broken file gives no profiles",
         browsersweep_profiles_read(home, chrome, &error) == NULL);
    is_of_kind("a broken file is an error of its format", BROWSERSWEEP_ERROR_FORMAT, error);
    rule("an error need not be asked for",
         browsersweep_data_of_browser(home, chrome, NULL) == NULL);
}

static void nothing(void) {
    browsersweep_error_free(NULL);
    browsersweep_home_free(NULL);
    browsersweep_profiles_free(NULL);
    browsersweep_filters_free(NULL);
    browsersweep_data_free(NULL);
    browsersweep_plan_free(NULL);
    browsersweep_bookmarks_free(NULL);
    browsersweep_notifications_free(NULL);
    rule("no list has no entries", browsersweep_profiles_count(NULL) == 0 &&
                                       browsersweep_bookmarks_count(NULL) == 0 &&
                                       browsersweep_plan_count(NULL) == 0 &&
                                       browsersweep_notifications_count(NULL) == 0 &&
                                       browsersweep_data_categories(NULL) == 0);
    rule("no list has no texts", browsersweep_profiles_name(NULL, 0) == NULL &&
                                     browsersweep_bookmarks_url(NULL, 0) == NULL &&
                                     browsersweep_notifications_store(NULL, 0) == NULL);
    rule("no error has no text", same(browsersweep_error_text(NULL), ""));
}

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    browsersweep_home* home = browsersweep_home_at(arguments[1], NULL);
    wrong_arguments(home);
    refused_patterns();
    too_many_patterns(home);
    structures_without_size(home);
    structures_of_later_versions(home);
    broken_database(home, arguments[1]);
    broken_file(home, arguments[1]);
    nothing();
    browsersweep_home_free(home);
    return verdict();
}
