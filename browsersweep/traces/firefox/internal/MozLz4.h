#pragma once

#include <string_view>

#include "browsersweep/base/Bytes.h"

namespace browsersweep {

/**
 * What a compressed file of Firefox holds: eight bytes "mozLz40\0", the length of the contents in
 * four bytes, the least significant first, and one block of LZ4. Throws a `DecodingError` for
 * anything else, and for more than 64 MB.
 */
Bytes decodedMozLz4(BytesView file);

/** A file of this form. Throws a `DecodingError` for more than LZ4 takes at once, 2 GB. */
Bytes encodedMozLz4(std::string_view contents);

}  // namespace browsersweep
