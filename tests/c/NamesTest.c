#include <stddef.h>

#include "browsersweep/c/browsersweep.h"

#include "Rules.h"

static void browsers(void) {
    browsersweep_browser chrome = 99;
    rule("there are thirteen browsers", browsersweep_browser_count() == 13);
    rule("a browser is found by its raw value",
         browsersweep_browser_from_raw_value("googleChrome", &chrome));
    rule("it has that raw value", same(browsersweep_browser_raw_value(chrome), "googleChrome"));
    rule("it has a name for people",
         same(browsersweep_browser_display_name(chrome), "Google Chrome"));
    rule("it has a bundle identifier",
         same(browsersweep_browser_bundle_identifier(chrome), "com.google.Chrome"));
    for (browsersweep_browser i = 0; i < browsersweep_browser_count(); ++i) {
        browsersweep_browser found = 99;
        rule("every browser is found by its own raw value",
             browsersweep_browser_from_raw_value(browsersweep_browser_raw_value(i), &found) &&
                 found == i);
    }
    rule("letter case counts", !browsersweep_browser_from_raw_value("GoogleChrome", &chrome));
    rule("a name that is not found changes nothing",
         same(browsersweep_browser_raw_value(chrome), "googleChrome"));
    rule("no browser has no name", browsersweep_browser_raw_value(13) == NULL &&
                                       browsersweep_browser_display_name(13) == NULL &&
                                       browsersweep_browser_bundle_identifier(13) == NULL);
}

static void categories(void) {
    static const char* const names[] = {"cache",        "history",  "httpCookies",
                                        "flashCookies", "formData", "localStorage"};
    rule("there are six categories", browsersweep_category_count() == 6);
    for (size_t i = 0; i < 6; ++i) {
        const browsersweep_category category = (browsersweep_category)i;
        browsersweep_category found = BROWSERSWEEP_CACHE;
        rule("a category has its raw value",
             same(browsersweep_category_raw_value(category), names[i]));
        rule("it has a name for people", browsersweep_category_display_name(category) != NULL);
        rule("it is found by its raw value",
             browsersweep_category_from_raw_value(names[i], &found) && found == category);
    }
    browsersweep_category none = BROWSERSWEEP_CACHE;
    rule("the name of cookies is plain",
         same(browsersweep_category_display_name(BROWSERSWEEP_HTTP_COOKIES), "Cookies"));
    rule("no other text is a category", !browsersweep_category_from_raw_value("cookies", &none));
    rule("a set has the bit of its category",
         BROWSERSWEEP_SET_OF(BROWSERSWEEP_LOCAL_STORAGE) == 32);
}

int main(void) {
    rule("the version has three numbers", browsersweep_version()[0] >= '0');
    browsers();
    categories();
    return verdict();
}
