#pragma once

#include <cstddef>

#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep {

/** About how many bytes a value takes of a binary property list. Writes nothing to find out. */
std::size_t roughSize(const PropertyList& value);

}  // namespace browsersweep
