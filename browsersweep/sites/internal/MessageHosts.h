#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace browsersweep {

/**
 * The hosts among the texts of a protocol buffer, of which nothing else is known: texts that are a
 * web address, or a host of at least two labels, at any depth. What follows a damaged place is not
 * looked at. Never throws but `std::bad_alloc`.
 */
std::vector<std::string> hostsInMessage(std::string_view bytes);

}  // namespace browsersweep
