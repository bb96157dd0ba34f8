#pragma once

/**
 * @file
 * What a shared library shows of itself. Everything else in it is hidden.
 */

/**
 * @def BROWSERSWEEP_EXPORT
 * Marks a declaration that a shared library shows. It means nothing where
 * `BROWSERSWEEP_STATIC_DEFINE` is defined, as the CMake package and pkg-config define it for the
 * static library.
 */
#ifdef BROWSERSWEEP_STATIC_DEFINE
#define BROWSERSWEEP_EXPORT
#else
#define BROWSERSWEEP_EXPORT __attribute__((visibility("default")))
#endif
