#include <array>
#include <string>

#include <gtest/gtest.h>

#include "browsersweep/platform/ProcessLauncher.h"

#include "tests/support/TemporaryFolder.h"

namespace browsersweep {

TEST(ProcessLauncher, runsAProgramWithItsArgumentsToItsEnd) {
    const tests::TemporaryFolder folder;
    const std::string file = (folder / "out").native();
    const std::array<std::string, 4> arguments{"-c", "printf '%s' \"$0\" > \"$1\"", "a b", file};
    ProcessLauncher::system()->runAndWait("/bin/sh", arguments);
    EXPECT_EQ(tests::readFile(file), "a b");
}

TEST(ProcessLauncher, isSilentAboutFailure) {
    const std::array<std::string, 2> arguments{"-c", "exit 3"};
    ProcessLauncher::system()->runAndWait("/bin/sh", arguments);
    const tests::TemporaryFolder folder;
    ProcessLauncher::system()->runAndWait(folder / "no such program", {});
    EXPECT_EQ(folder.snapshot(), std::vector<std::string>{});
}

}  // namespace browsersweep
