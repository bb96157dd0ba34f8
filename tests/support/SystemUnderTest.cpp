#include "tests/support/SystemUnderTest.h"

#include <cstdlib>

namespace browsersweep::tests {

bool isDarwin() noexcept {
#ifdef BROWSERSWEEP_TESTS_OF_DARWIN
    return true;
#else
    return false;
#endif
}

bool isEmulated(std::string_view word) noexcept {
    const char* const words = std::getenv("DARWIN_EMULATION");
    const std::string_view text = words == nullptr ? "" : words;
    return isDarwin() && text.find(word) != std::string_view::npos;
}

bool sizesAreThoseOfTheListing() noexcept {
    const bool isPlain = isEmulated("bulk=no") || isEmulated("sizes=no");
    return isDarwin() && (!isPlain || isEmulated("kinds=no"));
}

}  // namespace browsersweep::tests
