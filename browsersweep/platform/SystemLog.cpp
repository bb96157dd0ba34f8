#include "browsersweep/platform/SystemLog.h"

namespace browsersweep {

SystemLog::~SystemLog() = default;

}  // namespace browsersweep
