#include <gtest/gtest.h>

#include "browsersweep/platform/SystemLog.h"

namespace browsersweep {
namespace {

TEST(SystemLog, theSystemsLogTakesAnyMessage) {
    const std::shared_ptr<const SystemLog> log = SystemLog::system();
    ASSERT_NE(nullptr, log);
    log->debug("");
    log->debug("100 % of it: %s %n");
}

}  // namespace
}  // namespace browsersweep
