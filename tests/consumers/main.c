/* What a program in C does with the library: counts what Chrome keeps, and removes it. */

#include <stdio.h>

#include "browsersweep/c/browsersweep.h"

int main(int count, char** arguments) {
    browsersweep_browser chrome = 0;
    if (count != 2 || !browsersweep_browser_from_raw_value("googleChrome", &chrome)) {
        return 2;
    }
    browsersweep_error* error = NULL;
    browsersweep_size removed = {sizeof removed, 0, 0, false, false};
    browsersweep_home* home = browsersweep_home_at(arguments[1], &error);
    browsersweep_data* data = home ? browsersweep_data_of_browser(home, chrome, &error) : NULL;
    const bool cleaned = data && browsersweep_data_clean(data, BROWSERSWEEP_ALL_CATEGORIES, NULL, 0,
                                                         NULL, NULL, &removed, &error);
    if (!cleaned) {
        fprintf(stderr, "%s\n", browsersweep_error_text(error));
    }
    browsersweep_data_free(data);
    browsersweep_home_free(home);
    browsersweep_error_free(error);
    return cleaned && removed.items > 0 ? 0 : 1;
}
