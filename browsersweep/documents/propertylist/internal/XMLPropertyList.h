#pragma once

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

/**
 * Whether the bytes look like a property list in XML: after a byte order mark and white space comes
 * a `<` that does not begin the data of an old-style text.
 */
bool isXMLPropertyList(BytesView bytes) noexcept;

/**
 * Reads a property list in XML. The root is a `plist` element with one value, or the value itself.
 * Entities of the document's own are refused. Throws `DecodingError` of the kind `dataCorrupted`.
 */
PropertyList parseXMLPropertyList(BytesView bytes);

/** Writes a property list in XML, as `PropertyList::dataLike` says. */
Bytes xmlPropertyListData(const PropertyList& value);

}  // namespace browsersweep
