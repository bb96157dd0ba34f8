#include "browsersweep/platform/HTTPCookieStorage.h"

namespace browsersweep {

HTTPCookieStorage::~HTTPCookieStorage() = default;

}  // namespace browsersweep
