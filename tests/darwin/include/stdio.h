#pragma once
#include_next <stdio.h>

#define RENAME_SWAP 0x00000002

extern "C" int renameatx_np(int fromDirectory, const char* from, int toDirectory, const char* to,
                            unsigned flags);
