#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
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

/** What a shell writes to the file that it knows as $0. */
std::string writtenBy(const std::string& command) {
    const tests::TemporaryFolder folder;
    const std::string file = (folder / "out").native();
    const std::array<std::string, 3> arguments{"-c", command, file};
    ProcessLauncher::system()->runAndWait("/bin/sh", arguments);
    return tests::readFile(file);
}

TEST(ProcessLauncher, whatAProgramPrintsReachesNoTerminal) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(writtenBy("echo out; echo err >&2; cat > \"$0\""), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ProcessLauncher, namesInACommandAreTheSystemsOwnPrograms) {
    const tests::TemporaryFolder folder;
    std::filesystem::permissions(folder.write("ls", "#!/bin/sh\nexit 3\n"),
                                 std::filesystem::perms::owner_all);
    const std::string before = std::getenv("PATH");
    ASSERT_EQ(::setenv("PATH", (folder.path().native() + ":" + before).c_str(), 1), 0);
    ASSERT_EQ(::setenv("BROWSERSWEEP_TEST_VARIABLE", "kept", 1), 0);
    EXPECT_EQ(writtenBy("ls / > /dev/null && printf \"$BROWSERSWEEP_TEST_VARIABLE\" > \"$0\""),
              "kept");
    ::setenv("PATH", before.c_str(), 1);
    ::unsetenv("BROWSERSWEEP_TEST_VARIABLE");
}

TEST(ProcessLauncher, aSignalThatTheCallerBlocksStillEndsAProgram) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const std::string written = writtenBy("printf first > \"$0\"; kill $$; printf second > \"$0\"");
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(written, "first");
}

}  // namespace browsersweep
