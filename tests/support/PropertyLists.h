#pragma once

#include <string>

#include "browsersweep/base/Bytes.h"
#include "browsersweep/documents/propertylist/PropertyList.h"

namespace browsersweep::tests {

/** A value of the kind string. */
PropertyList text(std::string value);

/** A value of the kind dictionary. */
PropertyList dictionary(PropertyList::Dictionary entries);

/**
 * Property lists in data within each other, to a depth that is read, each of which holds the next
 * one many times, and the innermost the value: short, but without end for those who read them all.
 */
PropertyList manyInEachOther(PropertyList value);

/** Expects that reading the bytes fails with `dataCorrupted` and says why. */
void expectCorrupted(BytesView bytes);

/**
 * Puts every byte in every place of a property list and reads it. An error or a value are both
 * right for damaged bytes; the error must be `dataCorrupted`, and the value must be whole, so that
 * it can be written and read again.
 */
void expectErrorOrValueForEveryCorruptionOfOneByte(const Bytes& valid);

}  // namespace browsersweep::tests
