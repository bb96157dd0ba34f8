#pragma once

#include "browsersweep/platform/ForwardingFileManager.h"

namespace browsersweep::tests {

using browsersweep::ForwardingEnumerator;
using browsersweep::ForwardingFileManager;

}  // namespace browsersweep::tests
