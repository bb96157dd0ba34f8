#pragma once

#include <string>

namespace browsersweep::emulation {

/**
 * The path that a file system of macOS means by a path: with `names=insensitive` a name that is not
 * there stands for one that differs in letter case or composition alone; with `names=decomposed`
 * new names are stored decomposed as well. Relative paths are relative to the directory.
 */
std::string meantPath(int directory, const char* path);

/** Whether every name of a path is UTF-8: others cannot be made. */
bool isUTF8(const std::string& path);

/** The absolute path without "." and ".."; links are not followed. */
std::string absolutePath(int directory, const std::string& path);

}  // namespace browsersweep::emulation
