#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

/**
 * Every test process gets a home and a temporary folder of its own before anything can ask for
 * them: no test can reach the home of whoever runs it.
 */
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const browsersweep::tests::TemporaryFolder sandbox;
    const auto home = sandbox.makeFolder("home");
    const auto temporary = sandbox.makeFolder("tmp");
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.c_str(), 1);  // what counts on macOS
    ::setenv("TMPDIR", temporary.c_str(), 1);
    return RUN_ALL_TESTS();
}
