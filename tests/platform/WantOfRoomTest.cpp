#include <cerrno>
#include <future>
#include <system_error>

#include <gtest/gtest.h>

#include "browsersweep/platform/internal/WantOfRoom.h"

namespace browsersweep {
namespace {

TEST(WantOfRoom, isAFullDiskOrAUsedUpQuota) {
    EXPECT_TRUE(isWantOfRoom(std::make_error_code(std::errc::no_space_on_device)));
    for (const int number : {ENOSPC, EDQUOT}) {
        EXPECT_TRUE(isWantOfRoom({number, std::system_category()}));
        EXPECT_TRUE(isWantOfRoom({number, std::generic_category()}));
        EXPECT_FALSE(isWantOfRoom({number, std::future_category()}));
    }
    EXPECT_FALSE(isWantOfRoom({}));
    EXPECT_FALSE(isWantOfRoom({EIO, std::system_category()}));
}

}  // namespace
}  // namespace browsersweep
