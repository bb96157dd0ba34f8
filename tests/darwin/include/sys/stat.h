#pragma once
#include_next <sys/stat.h>

#define st_birthtimespec st_ctim
