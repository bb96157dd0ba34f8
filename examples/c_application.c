/* A small application in C: tells what each browser keeps, and cleans the cache of one of them. Its user
 * presses Stop in the middle, and then lets it go to its end. Of one site the user first looks at what
 * would go, and then removes what is surely that site's. */

#include <stdio.h>
#include <stdlib.h>

#include "browsersweep/c/browsersweep.h"

/* Says what went wrong and ends the program. */
static void fail(browsersweep_error* error) {
    fprintf(stderr, "%s\n", browsersweep_error_text(error));
    browsersweep_error_free(error);
    exit(1);
}

static browsersweep_data* data_of(const browsersweep_home* home, browsersweep_browser browser) {
    browsersweep_error* error = NULL;
    browsersweep_data* data = browsersweep_data_of_browser(home, browser, &error);
    if (data == NULL) {
        fail(error);
    }
    return data;
}

/* One browser's failure is told, and hides no other. */
static void show_size(const browsersweep_home* home, browsersweep_browser browser) {
    browsersweep_error* error = NULL;
    browsersweep_data* data = data_of(home, browser);
    browsersweep_size size = {sizeof size};
    const char* name = browsersweep_browser_display_name(browser);
    if (!browsersweep_data_size(data, browsersweep_data_categories(data), NULL, 0, NULL, NULL,
                                &size, &error)) {
        printf("%s: %s\n", name, browsersweep_error_text(error));
        browsersweep_error_free(error);
    } else if (size.items > 0) {
        printf("%s: %lld items, %lld bytes\n", name, (long long)size.items, (long long)size.bytes);
    }
    browsersweep_data_free(data);
}

/* What the window of the application would hold. */
struct window {
    bool stop_is_pressed;
};

static bool show_progress(void* context, browsersweep_category category, size_t done,
                          size_t total) {
    const struct window* window = context;
    fprintf(stderr, "\r%s: %zu of %zu", browsersweep_category_display_name(category), done, total);
    return !window->stop_is_pressed;
}

static void clean_cache(const browsersweep_data* data, bool stop_is_pressed) {
    struct window window = {stop_is_pressed};
    browsersweep_error* error = NULL;
    browsersweep_size removed = {sizeof removed};
    const bool is_done =
        browsersweep_data_clean(data, BROWSERSWEEP_SET_OF(BROWSERSWEEP_CACHE), NULL, 0,
                                show_progress, &window, &removed, &error);
    fputs("\n", stderr);
    if (!is_done && browsersweep_error_get_kind(error) != BROWSERSWEEP_ERROR_CANCELLED) {
        fail(error);
    }
    browsersweep_error_free(error);
    printf("%s: %lld files removed\n", is_done ? "done" : "stopped", (long long)removed.items);
}

static browsersweep_filters* only(const char* site) {
    const browsersweep_patterns patterns = {
        .struct_size = sizeof patterns, .include = true, .patterns = &site, .count = 1};
    browsersweep_error* error = NULL;
    browsersweep_filters* filters = browsersweep_filters_new(&error);
    if (filters == NULL || !browsersweep_filters_add(filters, &patterns, NULL, &error)) {
        fail(error);
    }
    return filters;
}

/* Every table of the history of which something would go. */
static void show_plan(const browsersweep_data* data, const browsersweep_filters* filters) {
    browsersweep_error* error = NULL;
    browsersweep_plan* plan = browsersweep_plan_of_data(
        data, BROWSERSWEEP_SET_OF(BROWSERSWEEP_HISTORY), filters, 0, NULL, NULL, &error);
    if (plan == NULL) {
        fail(error);
    }
    browsersweep_entry entry = {.struct_size = sizeof entry};
    for (size_t i = 0; browsersweep_plan_entry(plan, i, &entry); ++i) {
        printf("%s, %s: %lld rows%s\n", entry.profile, entry.table, (long long)entry.items,
               entry.is_unseen ? ", of any site" : "");
    }
    browsersweep_plan_free(plan);
}

static void clean_site(const browsersweep_data* data, const char* site) {
    browsersweep_filters* filters = only(site);
    browsersweep_error* error = NULL;
    browsersweep_size removed = {.struct_size = sizeof removed};
    show_plan(data, filters);
    if (!browsersweep_data_clean(data, BROWSERSWEEP_SET_OF(BROWSERSWEEP_HISTORY), filters,
                                 BROWSERSWEEP_STRICT, NULL, NULL, &removed, &error)) {
        fail(error);
    }
    printf("%s: %lld rows removed\n", site, (long long)removed.items);
    browsersweep_filters_free(filters);
}

int main(int count, char** arguments) {
    if (count != 2) {
        fputs("usage: c_application HOME\n", stderr);
        return 2;
    }
    browsersweep_error* error = NULL;
    browsersweep_home* home = browsersweep_home_at(arguments[1], &error);
    if (home == NULL) {
        fail(error);
    }
    for (browsersweep_browser each = 0; each < browsersweep_browser_count(); ++each) {
        show_size(home, each);
    }
    browsersweep_browser firefox;
    if (browsersweep_browser_from_raw_value("firefox", &firefox)) {
        browsersweep_data* data = data_of(home, firefox);
        clean_cache(data, true);
        clean_cache(data, false);
        clean_site(data, "example.com");
        browsersweep_data_free(data);
    }
    browsersweep_home_free(home);
}
