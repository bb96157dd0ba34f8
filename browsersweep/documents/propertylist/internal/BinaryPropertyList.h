#pragma once

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

/** Whether the bytes announce themselves as a binary property list. */
bool isBinaryPropertyList(BytesView bytes) noexcept;

/**
 * Reads a binary property list. Every object is read once, however often it is referred to; what
 * it would grow to if each reference were a copy is bounded too, because code that walks the value
 * visits it that often. Throws `DecodingError` of the kind `dataCorrupted`.
 */
PropertyList parseBinaryPropertyList(BytesView bytes);

/** Writes a binary property list, laid out as `PropertyList::binaryData` says. */
Bytes binaryPropertyListData(const PropertyList& value);

}  // namespace browsersweep
