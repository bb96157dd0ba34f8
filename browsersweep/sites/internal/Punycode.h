#pragma once

#include <string>
#include <string_view>

namespace browsersweep {

/**
 * A host's name as browsers write it: each label with letters beyond ASCII in the form that begins
 * with "xn--" (RFC 3492). Capital letters of Latin, Greek and Cyrillic become small ones. Empty
 * where the text is no UTF-8, or has accents as marks of their own, which would be another name.
 */
std::string asciiHost(std::string_view host);

}  // namespace browsersweep
