#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/NoRoom.h"

namespace browsersweep {
namespace {

TEST(NoRoom, isSaidByTheSystemAndBySQLite) {
    const auto full = std::make_error_code(std::errc::no_space_on_device);
    EXPECT_TRUE(saysNoRoom(std::filesystem::filesystem_error("full", full)));
    EXPECT_TRUE(saysNoRoom(SQLiteError("full", SQLITE_FULL)));
    EXPECT_TRUE(saysNoRoom(SQLiteError("disk I/O error", SQLITE_IOERR_WRITE)));
    const auto denied = std::make_error_code(std::errc::permission_denied);
    EXPECT_FALSE(saysNoRoom(std::filesystem::filesystem_error("denied", denied)));
    EXPECT_FALSE(saysNoRoom(SQLiteError("locked", SQLITE_BUSY)));
    EXPECT_FALSE(saysNoRoom(std::runtime_error("full")));
}

}  // namespace
}  // namespace browsersweep
