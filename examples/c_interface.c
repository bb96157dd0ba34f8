/* The C interface: sizes and cleans the cookies of a home's browsers, and shows its progress. */

#include <stdio.h>
#include <stdlib.h>

#include "browsersweep/c/browsersweep.h"

static bool show(void* context, browsersweep_category category, size_t done, size_t total) {
    (void)context;
    fprintf(stderr, "\r%zu of %zu: %s", done, total, browsersweep_category_raw_value(category));
    return true; /* false would stop here */
}

/* Says what went wrong and ends the program. */
static void fail(browsersweep_error* error) {
    fprintf(stderr, "%s\n", browsersweep_error_text(error));
    browsersweep_error_free(error);
    exit(1);
}

static void clean_cookies(const browsersweep_home* home, browsersweep_browser browser,
                          const browsersweep_filters* filters) {
    const browsersweep_categories cookies = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HTTP_COOKIES);
    browsersweep_error* error = NULL;
    browsersweep_data* data = browsersweep_data_of_browser(home, browser, &error);
    if (data == NULL) {
        fail(error);
    }
    if (browsersweep_data_categories(data) & cookies) {
        browsersweep_size removed = {sizeof removed};
        if (!browsersweep_data_clean(data, cookies, filters, 0, show, NULL, &removed, &error)) {
            fail(error);
        }
        fputs("\n", stderr);
        printf("%s: %lld cookies removed\n", browsersweep_browser_display_name(browser),
               (long long)removed.items);
    }
    browsersweep_data_free(data);
}

int main(int count, char** arguments) {
    if (count != 2) {
        fputs("usage: c_interface HOME\n", stderr);
        return 2;
    }
    browsersweep_error* error = NULL;
    browsersweep_home* home = browsersweep_home_at(arguments[1], &error);
    if (home == NULL) {
        fail(error);
    }
    const char* const kept[] = {"example.com", "example.org"};
    const browsersweep_patterns patterns = {
        .struct_size = sizeof patterns, .include = false, .patterns = kept, .count = 2};
    browsersweep_filters* filters = browsersweep_filters_new(&error);
    if (filters == NULL || !browsersweep_filters_add(filters, &patterns, NULL, &error)) {
        fail(error);
    }
    static const char* const names[] = {"firefox", "googleChrome"};
    for (size_t i = 0; i < 2; ++i) {
        browsersweep_browser browser;
        if (browsersweep_browser_from_raw_value(names[i], &browser)) {
            clean_cookies(home, browser, filters);
        }
    }
    browsersweep_filters_free(filters);
    browsersweep_home_free(home);
}
