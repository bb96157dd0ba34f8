#pragma once

#define COPYFILE_ACL 0x1
#define COPYFILE_XATTR 0x4

typedef struct copyfile_state* copyfile_state_t;

extern "C" int fcopyfile(int source, int target, copyfile_state_t state, unsigned flags);
