#pragma once
#include_next <fcntl.h>

#define F_FULLFSYNC 51
#define F_BARRIERFSYNC 85

extern "C" int browsersweepEmulatedFcntl(int descriptor, int command, ...);
#define fcntl(...) browsersweepEmulatedFcntl(__VA_ARGS__)
