#pragma once

#include <string>
#include <string_view>

namespace browsersweep {

/**
 * The part of a host's name that somebody registered, by the public suffix list that comes with the
 * system's library; the whole name where it is a public suffix itself. The name is in small
 * letters, of several labels, and no address in numbers.
 */
std::string registrableDomain(const std::string& host);

}  // namespace browsersweep
