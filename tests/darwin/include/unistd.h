#pragma once
#include_next <unistd.h>

#define _CS_DARWIN_USER_TEMP_DIR 65537

extern "C" size_t browsersweepEmulatedConfstr(int name, char* buffer, size_t size);
#define confstr(name, buffer, size) browsersweepEmulatedConfstr((name), (buffer), (size))

extern "C" int issetugid(void);
