#pragma once

#include <optional>
#include <string_view>

#include "browsersweep/base/Browser.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"

namespace browsersweep::cli {

/** The browser of a raw value, or of a short name as people type it, such as "chrome". */
std::optional<Browser> browserNamed(std::string_view name);

/** The category of a raw value, or of a short name as people type it, such as "cookies". */
std::optional<CleanableDataCategory> categoryNamed(std::string_view name);

}  // namespace browsersweep::cli
