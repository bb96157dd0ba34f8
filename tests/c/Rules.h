#pragma once

#include <stdbool.h>

/** One rule, in words, and whether it holds. */
void rule(const char* words, bool holds);

/** Whether two texts are the same; NULL is only like NULL. */
bool same(const char* a, const char* b);

/** What main returns: 0 if every rule held, and there was one. */
int verdict(void);
