#pragma once

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/sites/SiteSelection.h"
#include "browsersweep/sites/Trace.h"
#include "browsersweep/sites/TraceStore.h"

namespace browsersweep {

/** What a request takes of a listing, also what of other sites goes with the sites meant. */
BROWSERSWEEP_EXPORT TraceListing selectedPart(const TraceListing& listing,
                                              const ForgetRequest& request);

/** What the first of two listings of a store has and the second has not: what went in between. */
BROWSERSWEEP_EXPORT TraceListing goneBetween(const TraceListing& before, const TraceListing& after);

/** All that a listing tells of; what belongs to several sites is counted once. */
BROWSERSWEEP_EXPORT CleanableDataSize totalSize(const TraceListing& listing);

/** Adds what another store has of the same site and kind. */
BROWSERSWEEP_EXPORT void merge(Trace& trace, const Trace& other);

}  // namespace browsersweep
