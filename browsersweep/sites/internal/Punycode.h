#pragma once

#include <string>
#include <string_view>

namespace browsersweep {

/**
 * A host's name as browsers write it: each label with letters beyond ASCII in the form that begins
 * with "xn--" (RFC 3492). Capital letters of Latin, Greek and Cyrillic become small ones. Empty
 * where the text is no UTF-8, or has accents as marks of their own or blanks and dots that are not
 * those of ASCII: it would be another name than the one that is meant.
 */
std::string asciiHost(std::string_view host);

}  // namespace browsersweep
