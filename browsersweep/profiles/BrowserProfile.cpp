#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

BrowserProfile::~BrowserProfile() = default;

}  // namespace browsersweep
