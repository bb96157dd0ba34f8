#pragma once
#include_next <sys/resource.h>

#define IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES 3
#define IOPOL_SCOPE_THREAD 1
#define IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT 0
#define IOPOL_MATERIALIZE_DATALESS_FILES_OFF 1

extern "C" int getiopolicy_np(int type, int scope);
extern "C" int setiopolicy_np(int type, int scope, int policy);
