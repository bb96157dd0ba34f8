#pragma once

#include <filesystem>
#include <system_error>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace browsersweep::tests {

/** The permissions of what lies at a path, links not followed. */
inline unsigned modeOf(const std::filesystem::path& path) {
    struct stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

/** The error that an operation throws; a success is a failure of the test. */
template <typename Operation>
std::errc errorThrownBy(Operation operation) {
    try {
        operation();
    } catch (const std::filesystem::filesystem_error& error) {
        return static_cast<std::errc>(error.code().value());
    }
    ADD_FAILURE() << "no error";
    return {};
}

}  // namespace browsersweep::tests
