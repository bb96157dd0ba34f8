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

int verdict(void) {
    return broken == 0 && held > 0 ? 0 : 1;
}
