#pragma once

#include <any>
#include <map>
#include <string>

namespace browsersweep {

/** What a caller hands to the types that read or write themselves. */
using BinaryUserInfo = std::map<std::string, std::any>;

}  // namespace browsersweep
