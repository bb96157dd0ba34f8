#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/documents/DecodingError.h"
#include "browsersweep/hosting/FailureKind.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

FailureKind ofFile(std::errc code) {
    return failureKind(std::filesystem::filesystem_error("m", std::make_error_code(code)));
}

TEST(FailureKind, tellsWhatAnErrorMeans) {
    EXPECT_EQ(ofFile(std::errc::permission_denied), FailureKind::noPermission);
    EXPECT_EQ(ofFile(std::errc::no_such_file_or_directory), FailureKind::nothingThere);
    EXPECT_EQ(ofFile(std::errc::io_error), FailureKind::other);
    EXPECT_EQ(failureKind(DecodingError(DecodingError::Kind::dataCorrupted, "x")),
              FailureKind::notUnderstood);
    EXPECT_EQ(failureKind(OperationCancelled({})), FailureKind::cancelled);
    EXPECT_EQ(failureKind(std::runtime_error("database is locked")), FailureKind::other);
}

TEST(FailureKind, hasAShortNameForPeople) {
    EXPECT_EQ(displayName(FailureKind::nothingThere), "nothing there");
    EXPECT_EQ(displayName(FailureKind::locked), "locked by a running browser");
    EXPECT_EQ(displayName(FailureKind::noPermission), "no permission");
    EXPECT_EQ(displayName(FailureKind::notUnderstood), "not understood");
    EXPECT_EQ(displayName(FailureKind::cancelled), "cancelled");
    EXPECT_EQ(displayName(FailureKind::other), "");
}

}  // namespace
}  // namespace browsersweep
