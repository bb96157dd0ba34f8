#pragma once

/**
 * @file
 * The interface for programs in other languages: plain C, and nothing of C++ in sight.
 *
 * **Handles.** Every `browsersweep_...` structure is opaque. Who gets one from a function whose
 * name says `new`, `current`, `at`, `read` or `of` owns it and lets go of it once with the
 * `..._free` of its kind, in any order: no handle needs another to live on. Every `..._free` takes
 * NULL.
 *
 * **Texts** are UTF-8 and end in a zero byte; a path is the bytes that the file system gives. A
 * text that is returned belongs to the handle that was asked and lives as long as it; those of
 * browsers and categories live for ever. A text that is passed in is copied.
 *
 * **Errors.** A function that can fail takes a place for an error as its last argument. On failure
 * it returns NULL or false and, where the place is not NULL, puts a new error there, which the
 * caller frees. On success the place is left as it was. No C++ exception leaves the library. Out of
 * memory, and a sum of sizes beyond 64 bits, end the process where no error can be made.
 *
 * **Threads.** Several threads may work at once, each on handles of its own; data of profiles of
 * one list counts as one handle for that. Nothing else is shared behind the handles. A handle may
 * be read by several threads, but not while one frees or fills it.
 *
 * **Structures** begin with `struct_size`, which the caller sets to the size of the structure in
 * the header that it was compiled with: `browsersweep_size size = {sizeof size};`. So they can
 * grow, and neither side reads or writes what the other does not know. One that is too small for
 * what this header declares first is an invalid argument; fields that this version does not know
 * are not read.
 *
 * Indexes run from 0; one that is out of range gives NULL or false. An argument that must not be
 * NULL and is gives an error of the kind `BROWSERSWEEP_ERROR_INVALID_ARGUMENT`, or NULL, 0 or false
 * from a function that reports no errors.
 */

// C has no namespaces, names types with typedef, and has these headers under these names.
// NOLINTBEGIN(readability-identifier-naming,modernize-use-using,modernize-deprecated-headers)

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "../Export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The version of the library, such as "0.1.0". */
BROWSERSWEEP_EXPORT const char* browsersweep_version(void);

/** What went wrong. */
typedef struct browsersweep_error browsersweep_error;

/** The kinds of errors. */
typedef enum browsersweep_error_kind {
    BROWSERSWEEP_ERROR_OTHER = 0,            /**< none of the others */
    BROWSERSWEEP_ERROR_INVALID_ARGUMENT = 1, /**< the call itself is wrong */
    BROWSERSWEEP_ERROR_FILE = 2,             /**< the file system refused */
    BROWSERSWEEP_ERROR_DATABASE = 3,         /**< SQLite refused, a locked database included */
    BROWSERSWEEP_ERROR_FORMAT = 4,           /**< a file does not hold what it should */
    BROWSERSWEEP_ERROR_CANCELLED = 5         /**< the progress function said so */
} browsersweep_error_kind;

/** The kind of an error. */
BROWSERSWEEP_EXPORT browsersweep_error_kind
browsersweep_error_get_kind(const browsersweep_error* error);

/** The text of an error, in English; never NULL, and empty where the source gave none. */
BROWSERSWEEP_EXPORT const char* browsersweep_error_text(const browsersweep_error* error);

/** Lets go of an error. */
BROWSERSWEEP_EXPORT void browsersweep_error_free(browsersweep_error* error);

/** A browser: from 0 to `browsersweep_browser_count() - 1`, in an order that is kept. */
typedef size_t browsersweep_browser;

/** How many browsers the library knows. */
BROWSERSWEEP_EXPORT size_t browsersweep_browser_count(void);

/** The name of a browser in files and options, such as "googleChrome"; NULL for no browser. */
BROWSERSWEEP_EXPORT const char* browsersweep_browser_raw_value(browsersweep_browser browser);

/** The name of a browser for people, such as "Google Chrome"; NULL for no browser. */
BROWSERSWEEP_EXPORT const char* browsersweep_browser_display_name(browsersweep_browser browser);

/** The bundle identifier of its application on macOS; NULL for no browser. */
BROWSERSWEEP_EXPORT const char* browsersweep_browser_bundle_identifier(
    browsersweep_browser browser);

/** Finds the browser with exactly this raw value; false if there is none. */
BROWSERSWEEP_EXPORT bool browsersweep_browser_from_raw_value(const char* text,
                                                             browsersweep_browser* browser);

/** The kinds of data. The values are kept; sets of them are made with `BROWSERSWEEP_SET_OF`. */
typedef enum browsersweep_category {
    BROWSERSWEEP_CACHE = 0,         /**< cached files */
    BROWSERSWEEP_HISTORY = 1,       /**< pages visited and files downloaded */
    BROWSERSWEEP_HTTP_COOKIES = 2,  /**< cookies */
    BROWSERSWEEP_FLASH_COOKIES = 3, /**< what Flash kept */
    BROWSERSWEEP_FORM_DATA = 4,     /**< what was typed into forms */
    BROWSERSWEEP_LOCAL_STORAGE = 5  /**< what sites keep in the browser */
} browsersweep_category;

/** A set of categories: a bit for each, the lowest for `BROWSERSWEEP_CACHE`. */
typedef uint32_t browsersweep_categories;

/** The set of one category. */
#define BROWSERSWEEP_SET_OF(category) ((browsersweep_categories)1 << (category))

/** The set of all categories, those of later versions included. */
#define BROWSERSWEEP_ALL_CATEGORIES ((browsersweep_categories)0xffffffff)

/** How many categories there are. */
BROWSERSWEEP_EXPORT size_t browsersweep_category_count(void);

/** The name of a category in files and options, such as "httpCookies"; NULL for no category. */
BROWSERSWEEP_EXPORT const char* browsersweep_category_raw_value(browsersweep_category category);

/** The name of a category for people, such as "Cookies"; NULL for no category. */
BROWSERSWEEP_EXPORT const char* browsersweep_category_display_name(browsersweep_category category);

/** Finds the category with exactly this raw value; false if there is none. */
BROWSERSWEEP_EXPORT bool browsersweep_category_from_raw_value(const char* text,
                                                              browsersweep_category* category);

/** The home folder whose Library folder is examined. */
typedef struct browsersweep_home browsersweep_home;

/** The home of the current user. Cleaning Safari's cookies empties the user's shared storage too.
 */
BROWSERSWEEP_EXPORT browsersweep_home* browsersweep_home_current(browsersweep_error** error);

/**
 * Another home folder. It need not exist: then no browser has any profile. Nothing of the current
 * user's is touched, neither the shared cookie storage nor the system's cookie daemons.
 */
BROWSERSWEEP_EXPORT browsersweep_home* browsersweep_home_at(const char* path,
                                                            browsersweep_error** error);

/** Lets go of a home. */
BROWSERSWEEP_EXPORT void browsersweep_home_free(browsersweep_home* home);

/** The profiles of one browser, as they were when they were read. */
typedef struct browsersweep_profiles browsersweep_profiles;

/** Reads which profiles a browser has. A browser that is not there has none: that is no error. */
BROWSERSWEEP_EXPORT browsersweep_profiles* browsersweep_profiles_read(const browsersweep_home* home,
                                                                      browsersweep_browser browser,
                                                                      browsersweep_error** error);

/** How many profiles there are. */
BROWSERSWEEP_EXPORT size_t browsersweep_profiles_count(const browsersweep_profiles* profiles);

/** The name of a profile; NULL where the browser records none. */
BROWSERSWEEP_EXPORT const char* browsersweep_profiles_name(const browsersweep_profiles* profiles,
                                                           size_t index);

/** Whether a profile is the browser's main one. */
BROWSERSWEEP_EXPORT bool browsersweep_profiles_is_primary(const browsersweep_profiles* profiles,
                                                          size_t index);

/** Lets go of the profiles. */
BROWSERSWEEP_EXPORT void browsersweep_profiles_free(browsersweep_profiles* profiles);

/** What narrows sizing and cleaning. No filter at all, or NULL for it, selects everything. */
typedef struct browsersweep_filters browsersweep_filters;

/** Texts, typically parts of host names, that must or must not occur. */
typedef struct browsersweep_patterns {
    size_t struct_size;          /**< the size of this structure */
    bool include;                /**< true: only what matches; false: all but what matches */
    const char* const* patterns; /**< `count` texts */
    size_t count;                /**< how many */
} browsersweep_patterns;

/** A range of dates in seconds since 1970-01-01 00:00:00 UTC, its bounds included. */
typedef struct browsersweep_dates {
    size_t struct_size; /**< the size of this structure */
    bool outside;       /**< false: what lies inside the range; true: what lies outside */
    bool has_start;     /**< whether the range has a start */
    bool has_end;       /**< whether the range has an end */
    double start_date;  /**< its start */
    double end_date;    /**< its end */
} browsersweep_dates;

/** A list without a filter. */
BROWSERSWEEP_EXPORT browsersweep_filters* browsersweep_filters_new(browsersweep_error** error);

/**
 * Adds one filter of patterns, of dates, or of both; either may be NULL. Patterns reach the
 * databases as they stand: one that is empty, is not UTF-8, or holds a quote, `%`, `_` or a control
 * character is refused. Filters that are more than a database takes are an invalid argument of the
 * functions that use them: about 990 patterns and ranges of dates together fit everywhere but in
 * Safari's history, which takes about 490.
 */
BROWSERSWEEP_EXPORT bool browsersweep_filters_add(browsersweep_filters* filters,
                                                  const browsersweep_patterns* patterns,
                                                  const browsersweep_dates* dates,
                                                  browsersweep_error** error);

/** Lets go of the filters. */
BROWSERSWEEP_EXPORT void browsersweep_filters_free(browsersweep_filters* filters);

/** Data that can be measured and cleaned. */
typedef struct browsersweep_data browsersweep_data;

/** The data of all profiles of a browser. */
BROWSERSWEEP_EXPORT browsersweep_data* browsersweep_data_of_browser(const browsersweep_home* home,
                                                                    browsersweep_browser browser,
                                                                    browsersweep_error** error);

/** The data of one profile. */
BROWSERSWEEP_EXPORT browsersweep_data* browsersweep_data_of_profile(
    const browsersweep_profiles* profiles, size_t index, browsersweep_error** error);

/** The categories that the data has. */
BROWSERSWEEP_EXPORT browsersweep_categories
browsersweep_data_categories(const browsersweep_data* data);

/** Whether cleaning one of these categories is safe only while the browser is not running. */
BROWSERSWEEP_EXPORT bool browsersweep_data_requires_closed_browser(
    const browsersweep_data* data, browsersweep_categories categories);

/** Lets go of the data: nothing is deleted by that. */
BROWSERSWEEP_EXPORT void browsersweep_data_free(browsersweep_data* data);

/** How much data there is. A number that is approximate is incomplete or estimated. */
typedef struct browsersweep_size {
    size_t struct_size;         /**< the size of this structure: set by the caller, and kept */
    int64_t items;              /**< entries, rows, files or cookies */
    int64_t bytes;              /**< what they occupy */
    bool items_are_approximate; /**< whether `items` is */
    bool bytes_are_approximate; /**< whether `bytes` is */
} browsersweep_size;

/**
 * Called before each piece of work and again and again within it: `done` of `total` pieces are
 * finished and the one at hand belongs to the category. Return false to stop there; it is not
 * called any more then. It must return at once, and must not throw, jump out, or free what the
 * running call uses.
 */
typedef bool (*browsersweep_progress)(void* context, browsersweep_category category, size_t done,
                                      size_t total);

/** How to work, in `options`: 0, or the sum of these. */
enum {
    BROWSERSWEEP_IGNORE_ERRORS = 1, /**< an item that fails counts zero, marked approximate */
    /**
     * What the filters cannot see is left out. Without it such data is taken whole: form data
     * under any filter, most cookies under dates, and whatever else has no text or no date to be
     * told by. Without filters it changes nothing.
     */
    BROWSERSWEEP_STRICT = 2
};

/**
 * Measures what the filters select. Only reads. The first item that fails ends it with its error.
 * `filters` and `progress` may be NULL; `context` is handed to `progress` as it is.
 */
BROWSERSWEEP_EXPORT bool browsersweep_data_size(const browsersweep_data* data,
                                                browsersweep_categories categories,
                                                const browsersweep_filters* filters,
                                                unsigned options, browsersweep_progress progress,
                                                void* context, browsersweep_size* size,
                                                browsersweep_error** error);

/**
 * Deletes what the filters select. The first item that fails, or a progress function that says
 * stop, ends it with an error; what was deleted before stays deleted. Where `removed` is not NULL
 * it tells what is really gone: everything is measured before and after, each in pieces of its own.
 * After a stop it tells what is known to be gone, marked approximate; after another error it is
 * left as it was.
 */
BROWSERSWEEP_EXPORT bool browsersweep_data_clean(const browsersweep_data* data,
                                                 browsersweep_categories categories,
                                                 const browsersweep_filters* filters,
                                                 unsigned options, browsersweep_progress progress,
                                                 void* context, browsersweep_size* removed,
                                                 browsersweep_error** error);

/** What a clean would take, one by one, as it was when it was looked at. */
typedef struct browsersweep_plan browsersweep_plan;

/** A file, rows of a table, or the cookies of a file. Its texts live as long as the plan. */
typedef struct browsersweep_entry {
    size_t struct_size;             /**< the size of this structure: set by the caller, and kept */
    browsersweep_category category; /**< its kind */
    const char* profile;            /**< the name of its profile; NULL where none is recorded */
    const char* folder;             /**< the folder of its profile; NULL where none is recorded */
    const char* path;               /**< the file, which for rows is the database */
    const char* table;              /**< the table of the rows; NULL for what is no rows */
    int64_t items;                  /**< rows, the cookies of a file, or 1 for another file */
    int64_t bytes;                  /**< the size of a file; 0 for rows */
    bool items_are_approximate;     /**< whether `items` is: 0 of rows that cannot be counted */
    bool bytes_are_approximate;     /**< whether `bytes` is */
    bool has_bytes;                 /**< false for rows: nobody can tell how many bytes they take */
    bool is_unseen; /**< whether it goes whole because the filters, or one of their parts, cannot
                       see it; `BROWSERSWEEP_STRICT` leaves it out */
} browsersweep_entry;

/**
 * Lists what a clean with the same arguments would take, so that a person can look before it goes:
 * each file, each table with its rows, each cookie file of which something is selected. Only reads.
 * The first item that fails ends it with its error; with `BROWSERSWEEP_IGNORE_ERRORS` such an item
 * is one entry of zero, marked approximate. Rows are counted with changes that wait beside the
 * database.
 */
BROWSERSWEEP_EXPORT browsersweep_plan* browsersweep_plan_of_data(
    const browsersweep_data* data, browsersweep_categories categories,
    const browsersweep_filters* filters, unsigned options, browsersweep_progress progress,
    void* context, browsersweep_error** error);

/** How many entries there are. */
BROWSERSWEEP_EXPORT size_t browsersweep_plan_count(const browsersweep_plan* plan);

/** Gives one entry; false if there is none, or if `struct_size` is not set. */
BROWSERSWEEP_EXPORT bool browsersweep_plan_entry(const browsersweep_plan* plan, size_t index,
                                                 browsersweep_entry* entry);

/** Lets go of the plan. */
BROWSERSWEEP_EXPORT void browsersweep_plan_free(browsersweep_plan* plan);

/** Bookmarks, as they were when they were read. */
typedef struct browsersweep_bookmarks browsersweep_bookmarks;

/** The bookmarks of all profiles of a browser. */
BROWSERSWEEP_EXPORT browsersweep_bookmarks* browsersweep_bookmarks_of_browser(
    const browsersweep_home* home, browsersweep_browser browser, browsersweep_error** error);

/** The bookmarks of one profile. */
BROWSERSWEEP_EXPORT browsersweep_bookmarks* browsersweep_bookmarks_of_profile(
    const browsersweep_profiles* profiles, size_t index, browsersweep_error** error);

/** How many bookmarks there are. */
BROWSERSWEEP_EXPORT size_t browsersweep_bookmarks_count(const browsersweep_bookmarks* bookmarks);

/** The title of a bookmark; NULL where it has none. */
BROWSERSWEEP_EXPORT const char* browsersweep_bookmarks_name(const browsersweep_bookmarks* bookmarks,
                                                            size_t index);

/** The address of a bookmark. */
BROWSERSWEEP_EXPORT const char* browsersweep_bookmarks_url(const browsersweep_bookmarks* bookmarks,
                                                           size_t index);

/** Lets go of the bookmarks. */
BROWSERSWEEP_EXPORT void browsersweep_bookmarks_free(browsersweep_bookmarks* bookmarks);

/** The sites that may send push notifications, as they were when they were read. */
typedef struct browsersweep_notifications browsersweep_notifications;

/** The sites that all profiles of a browser allow. */
BROWSERSWEEP_EXPORT browsersweep_notifications* browsersweep_notifications_of_browser(
    const browsersweep_home* home, browsersweep_browser browser, browsersweep_error** error);

/** The sites that one profile allows. */
BROWSERSWEEP_EXPORT browsersweep_notifications* browsersweep_notifications_of_profile(
    const browsersweep_profiles* profiles, size_t index, browsersweep_error** error);

/** How many sites there are. */
BROWSERSWEEP_EXPORT size_t
browsersweep_notifications_count(const browsersweep_notifications* notifications);

/** The address of a site. */
BROWSERSWEEP_EXPORT const char* browsersweep_notifications_source_url(
    const browsersweep_notifications* notifications, size_t index);

/** The path of the file that the permission was read from. */
BROWSERSWEEP_EXPORT const char* browsersweep_notifications_store(
    const browsersweep_notifications* notifications, size_t index);

/** Lets go of the sites. */
BROWSERSWEEP_EXPORT void browsersweep_notifications_free(browsersweep_notifications* notifications);

// NOLINTEND(readability-identifier-naming,modernize-use-using,modernize-deprecated-headers)

#ifdef __cplusplus
}
#endif
