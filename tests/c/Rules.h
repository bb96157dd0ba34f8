#pragma once

#include <stdbool.h>

#include "browsersweep/c/browsersweep.h"

/** One rule, in words, and whether it holds. */
void rule(const char* words, bool holds);

/** Whether two texts are the same; NULL is only like NULL. */
bool same(const char* a, const char* b);

/** The data of Chrome in a sample home. */
browsersweep_data* data_of_chrome(const char* home);

/** What main returns: 0 if every rule held, and there was one. */
int verdict(void);
