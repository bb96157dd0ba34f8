#pragma once

#include <sys/stat.h>

namespace browsersweep::emulation {

/** The BSD flags of files, which live as long as the process: by device and inode. */
unsigned flagsOf(const struct stat& file);
void setFlags(const struct stat& file, unsigned flags);

/** Whether a file is there that its flags protect from change and deletion. */
bool isLocked(int directory, const char* path, int statFlags);
bool isLocked(int descriptor);

/** Forgets the flags of a file, whose number may be used again. */
void forgetFlags(const struct stat& file);

}  // namespace browsersweep::emulation
