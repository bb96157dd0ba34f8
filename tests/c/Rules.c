#include "Rules.h"

#include <stdio.h>
#include <string.h>

static int held = 0;
static int broken = 0;

void rule(const char* words, bool holds) {
    if (holds) {
        ++held;
    } else {
        ++broken;
        printf("broken: %s\n", words);
    }
}

bool same(const char* a, const char* b) {
    return a == NULL || b == NULL ? a == b : strcmp(a, b) == 0;
}

browsersweep_data* data_of_chrome(const char* home) {
    browsersweep_browser chrome = 0;
    browsersweep_browser_from_raw_value("googleChrome", &chrome);
    browsersweep_home* place = browsersweep_home_at(home, NULL);
    browsersweep_data* data = browsersweep_data_of_browser(place, chrome, NULL);
    browsersweep_home_free(place);
    return data;
}

int verdict(void) {
    return broken == 0 && held > 0 ? 0 : 1;
}
