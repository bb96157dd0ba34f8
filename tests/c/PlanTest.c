#include <stddef.h>
#include <string.h>

#include "browsersweep/c/browsersweep.h"

#include "Rules.h"

static const browsersweep_categories cookies = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HTTP_COOKIES);
static const browsersweep_categories history = BROWSERSWEEP_SET_OF(BROWSERSWEEP_HISTORY);
static const browsersweep_categories cache = BROWSERSWEEP_SET_OF(BROWSERSWEEP_CACHE);

static int64_t items(const browsersweep_data* data, browsersweep_categories categories,
                     const browsersweep_filters* filters, unsigned options) {
    browsersweep_size size = {sizeof size, -1, -1, false, false};
    browsersweep_data_size(data, categories, filters, options, NULL, NULL, &size, NULL);
    return size.items;
}

static browsersweep_plan* plan_of(const browsersweep_data* data, browsersweep_categories categories,
                                  const browsersweep_filters* filters, unsigned options) {
    browsersweep_error* error = NULL;
    browsersweep_plan* plan =
        browsersweep_plan_of_data(data, categories, filters, options, NULL, NULL, &error);
    rule("a plan is made", plan != NULL && error == NULL);
    return plan;
}

/** The sum of the entries: of all of them, or of those that the filters cannot see. */
static int64_t sum_of(const browsersweep_plan* plan, bool only_unseen) {
    int64_t sum = 0;
    for (size_t i = 0; i < browsersweep_plan_count(plan); ++i) {
        browsersweep_entry entry = {.struct_size = sizeof entry};
        rule("an entry is given", browsersweep_plan_entry(plan, i, &entry));
        sum += only_unseen && !entry.is_unseen ? 0 : entry.items;
    }
    return sum;
}

static browsersweep_filters* only(const char* pattern) {
    const browsersweep_patterns patterns = {sizeof patterns, true, &pattern, 1};
    browsersweep_filters* filters = browsersweep_filters_new(NULL);
    rule("a filter is added", browsersweep_filters_add(filters, &patterns, NULL, NULL));
    return filters;
}

static void files(const browsersweep_data* data) {
    browsersweep_plan* plan = plan_of(data, cache, NULL, 0);
    browsersweep_entry entry = {.struct_size = sizeof entry};
    rule("each file of a folder is an entry",
         browsersweep_plan_count(plan) == (size_t)items(data, cache, NULL, 0));
    rule("the first one is given", browsersweep_plan_entry(plan, 0, &entry));
    rule("it tells whose it is", entry.category == BROWSERSWEEP_CACHE &&
                                     same(entry.profile, "Personal") &&
                                     same(entry.folder, "Default"));
    rule("it tells the file", strstr(entry.path, "/Caches/Google/Chrome/Default/") != NULL);
    rule("it is no table", entry.table == NULL);
    rule("a file is one, and has its size", entry.items == 1 && entry.has_bytes &&
                                                entry.bytes > 0 && !entry.bytes_are_approximate);
    rule("there is none beyond the last",
         !browsersweep_plan_entry(plan, browsersweep_plan_count(plan), &entry));
    browsersweep_plan_free(plan);
}

static void tables(const browsersweep_data* data) {
    browsersweep_plan* plan = plan_of(data, cookies, NULL, 0);
    browsersweep_entry entry = {.struct_size = sizeof entry};
    rule("the cookies of each profile are a table", browsersweep_plan_count(plan) == 2);
    rule("the second one is given", browsersweep_plan_entry(plan, 1, &entry));
    rule("it is the other profile's", same(entry.profile, "Work"));
    rule("it names table and database", same(entry.table, "cookies") &&
                                            strstr(entry.path, "/Profile 1/Cookies") != NULL);
    rule("nobody can tell how many bytes rows take", !entry.has_bytes && entry.bytes == 0);
    rule("the rows are those that are counted", sum_of(plan, false) == 12);
    browsersweep_plan_free(plan);
}

/** What a filter sees of the history, and what goes whatever it says. */
static void unseen(const browsersweep_data* data) {
    browsersweep_filters* filters = only("example.com");
    const int64_t all = items(data, history, filters, 0);
    const int64_t seen = items(data, history, filters, BROWSERSWEEP_STRICT);
    rule("a strict call leaves something out, and not all", seen > 0 && seen < all);

    browsersweep_plan* plan = plan_of(data, history, filters, 0);
    rule("a plan has all that a clean takes", sum_of(plan, false) == all);
    rule("it marks what the filters cannot see", sum_of(plan, true) == all - seen);
    browsersweep_plan_free(plan);

    plan = plan_of(data, history, filters, BROWSERSWEEP_STRICT);
    rule("a strict plan has what the filters see",
         sum_of(plan, false) == seen && sum_of(plan, true) == 0);
    browsersweep_plan_free(plan);
    rule("without filters nothing is strict",
         items(data, history, NULL, BROWSERSWEEP_STRICT) == items(data, history, NULL, 0));
    browsersweep_filters_free(filters);
}

static void strict_clean(const browsersweep_data* data) {
    browsersweep_filters* filters = only("example.com");
    const int64_t all = items(data, history, NULL, 0);
    const int64_t seen = items(data, history, filters, BROWSERSWEEP_STRICT);
    const int64_t files = items(data, cache, NULL, 0);
    browsersweep_size removed = {sizeof removed, 0, 0, false, false};
    rule("a strict clean is done",
         browsersweep_data_clean(data, history | cache, filters, BROWSERSWEEP_STRICT, NULL, NULL,
                                 &removed, NULL));
    rule("it removes what the filters see", removed.items == seen);
    rule("it leaves the rest", items(data, history, NULL, 0) == all - seen);
    rule("a cache, which has no text, stays whole", items(data, cache, NULL, 0) == files);
    browsersweep_filters_free(filters);
}

static bool stop(void* context, browsersweep_category category, size_t done, size_t total) {
    (void)category;
    (void)total;
    ++*(size_t*)context;
    return done < 1;
}

static void stopping(const browsersweep_data* data) {
    size_t calls = 0;
    browsersweep_error* error = NULL;
    rule("a plan can be stopped",
         browsersweep_plan_of_data(data, BROWSERSWEEP_ALL_CATEGORIES, NULL, 0, stop, &calls,
                                   &error) == NULL);
    rule("that is an error of its own kind",
         browsersweep_error_get_kind(error) == BROWSERSWEEP_ERROR_CANCELLED);
    rule("the function was asked before the first item and the second", calls >= 2);
    browsersweep_error_free(error);
    error = NULL;
    rule("no data has no plan",
         browsersweep_plan_of_data(NULL, cache, NULL, 0, NULL, NULL, &error) == NULL);
    rule("that is a wrong argument",
         browsersweep_error_get_kind(error) == BROWSERSWEEP_ERROR_INVALID_ARGUMENT);
    browsersweep_error_free(error);
}

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    browsersweep_data* data = data_of_chrome(arguments[1]);
    files(data);
    tables(data);
    stopping(data);
    unseen(data);
    strict_clean(data);
    browsersweep_data_free(data);
    return verdict();
}
