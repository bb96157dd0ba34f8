#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "browsersweep/platform/internal/Calendar.h"

namespace browsersweep {
namespace {

/** Sets the process's time zone for as long as it lives. */
class TimeZone {
public:
    explicit TimeZone(const char* name) {
        if (const char* present = std::getenv("TZ")) {
            previous_ = present;
        }
        set(name);
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() { set(previous_ ? previous_->c_str() : nullptr); }

private:
    static void set(const char* name) {
        EXPECT_EQ(name != nullptr ? setenv("TZ", name, 1) : unsetenv("TZ"), 0);
        tzset();
    }

    std::optional<std::string> previous_;
};

TEST(Calendar, midnightOf1601HasTheLocalMeanTimeOfTheCurrentZone) {
    struct Row {
        const char* zone;
        double expected;
    };
    // clang-format off
    const std::vector<Row> rows{
        {"UTC",              -11644473600.0},
        {"Europe/Paris",     -11644474161.0},
        {"America/New_York", -11644455838.0},
        {"Asia/Kolkata",     -11644494808.0},
        {"Asia/Kathmandu",   -11644494076.0},
        {"Asia/Tokyo",       -11644507139.0},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.zone);
        const TimeZone zone(row.zone);
        EXPECT_EQ(secondsSince1970(localMidnightOf1601()), row.expected);
    }
}

TEST(Calendar, midnightOf1601FollowsAChangeOfTheZone) {
    const TimeZone outer("Europe/Paris");
    const Date inParis = localMidnightOf1601();
    {
        const TimeZone inner("UTC");
        EXPECT_NE(localMidnightOf1601(), inParis);
    }
    EXPECT_EQ(localMidnightOf1601(), inParis);
}

}  // namespace
}  // namespace browsersweep
