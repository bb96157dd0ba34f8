#include "tests/support/AccountCookies.h"

#include <cstdlib>

namespace browsersweep::tests {

bool mayUseAccountCookies() {
#ifdef __APPLE__
    return std::getenv("BROWSERSWEEP_TEST_ACCOUNT_COOKIES") != nullptr;
#else
    return true;
#endif
}

}  // namespace browsersweep::tests
