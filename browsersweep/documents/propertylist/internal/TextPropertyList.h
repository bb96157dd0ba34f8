#pragma once

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

/** The bytes without a UTF-8 byte order mark and the white space at their start. */
BytesView withoutLeadingWhiteSpace(BytesView bytes) noexcept;

/**
 * Reads an old-style property list: words and texts in quotes, `( lists )`, `{ key = value; }` and
 * `<hexadecimal data>`, with comments. All scalars but data are texts. The braces of an outermost
 * dictionary may be left out, as in a strings file; white space alone is an empty dictionary; one
 * bare word is a text. Throws `DecodingError` of the kind `dataCorrupted`.
 */
PropertyList parseTextPropertyList(BytesView bytes);

}  // namespace browsersweep
