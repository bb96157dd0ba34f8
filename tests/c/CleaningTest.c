#include <stddef.h>

#include "browsersweep/c/browsersweep.h"

#include "Rules.h"

typedef struct {
    size_t calls;
    size_t last;
    size_t total;
    size_t stop_at;
    bool in_order;
    bool own_category;
} watched;

static bool watch(void* context, browsersweep_category category, size_t done, size_t total) {
    watched* seen = context;
    seen->in_order = seen->in_order && done >= seen->last && done <= seen->last + 1;
    seen->last = done;
    seen->own_category = seen->own_category && category == BROWSERSWEEP_HTTP_COOKIES;
    seen->total = total;
    ++seen->calls;
    return done != seen->stop_at;
}

static int64_t items(const browsersweep_data* data, browsersweep_categories categories,
                     const browsersweep_filters* filters) {
    browsersweep_size size = {sizeof size, -1, -1, false, false};
    browsersweep_data_size(data, categories, filters, 0, NULL, NULL, &size, NULL);
    return size.items;
}

static browsersweep_filters* keeping(const char* pattern) {
    const char* const texts[] = {pattern};
    const browsersweep_patterns patterns = {sizeof patterns, false, texts, 1};
    browsersweep_filters* filters = browsersweep_filters_new(NULL);
    rule("a filter is added", browsersweep_filters_add(filters, &patterns, NULL, NULL));
    return filters;
}

static const browsersweep_categories cookies = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HTTP_COOKIES);
static const browsersweep_categories history = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HISTORY);

static void sizes(const browsersweep_data* data) {
    watched seen = {0, 0, 0, 1000, true, true};
    browsersweep_size size = {sizeof size, 0, 0, false, false};
    rule("cookies are measured",
         browsersweep_data_size(data, cookies, NULL, 0, watch, &seen, &size, NULL));
    rule("there are twelve cookies", size.items == 12 && !size.items_are_approximate);
    rule("their bytes are approximate", size.bytes > 0 && size.bytes_are_approximate);
    rule("progress is told of each item in its order",
         seen.calls >= seen.total && seen.in_order && seen.own_category);
    rule("its last piece of work is the last of all", seen.last + 1 == seen.total);
    rule("all categories are more than one", items(data, BROWSERSWEEP_ALL_CATEGORIES, NULL) > 12);
    rule("no category is nothing", items(data, 0, NULL) == 0);
}

static void dates(const browsersweep_data* data) {
    browsersweep_filters* filters = browsersweep_filters_new(NULL);
    const browsersweep_dates future = {sizeof future, false, true, false, 4e9, 0};
    rule("a filter of dates is added", browsersweep_filters_add(filters, NULL, &future, NULL));
    const int64_t inside = items(data, history, filters);
    rule("what has no date is selected by any date", items(data, cookies, filters) == 12);
    browsersweep_filters_free(filters);

    filters = browsersweep_filters_new(NULL);
    const browsersweep_dates not_future = {sizeof not_future, true, true, false, 4e9, 0};
    browsersweep_filters_add(filters, NULL, &not_future, NULL);
    rule("history lies outside the future", items(data, history, filters) > inside);
    rule("all of it does", items(data, history, filters) == items(data, history, NULL));
    browsersweep_filters_free(filters);
}

static void stopping(const browsersweep_data* data) {
    watched seen = {0, 0, 0, 0, true, true};
    browsersweep_error* error = NULL;
    browsersweep_size removed = {sizeof removed, 7, 7, false, false};
    rule("a progress function can stop the work",
         !browsersweep_data_clean(data, cookies, NULL, 0, watch, &seen, &removed, &error));
    rule("that is an error of its own kind",
         browsersweep_error_get_kind(error) == BROWSERSWEEP_ERROR_CANCELLED);
    rule("it tells that nothing is gone", removed.items == 0 && removed.bytes == 0);
    rule("nothing was done before the first item", items(data, cookies, NULL) == 12);
    browsersweep_error_free(error);
}

/** The piece of work at hand, and how often it was asked within it whether to go on. */
typedef struct {
    size_t piece;
    size_t calls;
} within;

/** Stops in the middle of the first piece that deletes, which asks before each of many files. */
static bool stop_within(void* context, browsersweep_category category, size_t done, size_t total) {
    within* seen = context;
    (void)category;
    seen->calls = done == seen->piece ? seen->calls + 1 : 0;
    seen->piece = done;
    const bool deletes = done >= total / 3 && done < 2 * (total / 3);
    return !deletes || seen->calls < 6;
}

static void stopping_within(const browsersweep_data* data) {
    const browsersweep_categories cache = BROWSERSWEEP_SET_OF(BROWSERSWEEP_CACHE);
    within seen = {0, 0};
    browsersweep_error* error = NULL;
    browsersweep_size removed = {sizeof removed, 0, 0, false, false};
    const int64_t before = items(data, cache, NULL);
    rule("work stops in the middle of a folder",
         !browsersweep_data_clean(data, cache, NULL, 0, stop_within, &seen, &removed, &error));
    rule("that is an error of the same kind",
         browsersweep_error_get_kind(error) == BROWSERSWEEP_ERROR_CANCELLED);
    rule("what went is told", removed.items > 0 && removed.items < before);
    rule("approximately", removed.items_are_approximate);
    rule("the rest is there", items(data, cache, NULL) == before - removed.items);
    browsersweep_error_free(error);
}

static void cleaning(const browsersweep_data* data) {
    browsersweep_filters* filters = keeping("example.com");
    const int64_t selected = items(data, cookies, filters);
    watched seen = {0, 0, 0, 1000, true, true};
    browsersweep_size removed = {sizeof removed, 0, 0, false, false};
    rule("a keep-list keeps some cookies", selected > 0 && selected < 12);
    rule("cookies are cleaned",
         browsersweep_data_clean(data, cookies, filters, 0, watch, &seen, &removed, NULL));
    rule("what was selected is removed", removed.items == selected);
    rule("progress counts measuring, cleaning and measuring again",
         seen.total % 3 == 0 && seen.last + 1 == seen.total);
    rule("what was kept is there", items(data, cookies, NULL) == 12 - selected);
    browsersweep_filters_free(filters);

    rule("cleaning without a result is enough",
         browsersweep_data_clean(data, cookies, NULL, BROWSERSWEEP_IGNORE_ERRORS, NULL, NULL, NULL,
                                 NULL));
    rule("then no cookie is left", items(data, cookies, NULL) == 0);
    rule("other categories are left", items(data, BROWSERSWEEP_ALL_CATEGORIES, NULL) > 0);
}

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    browsersweep_data* data = data_of_chrome(arguments[1]);
    rule("data lives without its home", data != NULL);
    rule("the data has cookies", (browsersweep_data_categories(data) & cookies) != 0);
    rule("cookies need a closed browser", browsersweep_data_requires_closed_browser(data, cookies));
    sizes(data);
    dates(data);
    stopping(data);
    stopping_within(data);
    cleaning(data);
    browsersweep_data_free(data);
    return verdict();
}
