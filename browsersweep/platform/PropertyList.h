#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/platform/Bytes.h"
#include "browsersweep/platform/Date.h"

namespace browsersweep {

/** A value of a property list. To be completed by its codec. */
class BROWSERSWEEP_EXPORT PropertyList;

}  // namespace browsersweep
