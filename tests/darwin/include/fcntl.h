#pragma once
#include_next <fcntl.h>

#define F_FULLFSYNC 51
#define F_BARRIERFSYNC 85
