#pragma once
#include_next <sys/stat.h>

#define UF_IMMUTABLE 0x00000002

// Two fields that the structure lacks here take the places of others, and two calls fill them.
#define st_birthtimespec st_ctim
#define st_flags __glibc_reserved[0]

extern "C" int browsersweepEmulatedFstat(int descriptor, struct stat* status);
extern "C" int browsersweepEmulatedFstatat(int directory, const char* name, struct stat* status,
                                           int flags);
#define fstat(descriptor, status) browsersweepEmulatedFstat((descriptor), (status))
#define fstatat(directory, name, status, flags) \
    browsersweepEmulatedFstatat((directory), (name), (status), (flags))

extern "C" int chflags(const char* path, unsigned flags);
extern "C" int lchflags(const char* path, unsigned flags);
extern "C" int fchflags(int descriptor, unsigned flags);
