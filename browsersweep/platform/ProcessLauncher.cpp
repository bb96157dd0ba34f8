#include "browsersweep/platform/ProcessLauncher.h"

namespace browsersweep {

ProcessLauncher::~ProcessLauncher() = default;

}  // namespace browsersweep
