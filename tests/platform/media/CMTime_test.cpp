#include "platform/media/CMTime.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace sela {
namespace {

TEST(CMTime, RoundsToTheNearestUnitAndStaysInRange) {
    struct Case {
        double seconds;
        std::int32_t timescale;
        std::int64_t value;
    };
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    for (const Case& each : {Case{14.654, 600, 8792}, Case{0.1, 1, 0}, Case{0.5, 1, 1},
                             Case{-1.5, 1000, -1500}, Case{std::nan(""), 600, 0}, Case{infinity, 600, most},
                             Case{1e300, 1, most}, Case{-infinity, 600, least}})
        EXPECT_EQ(CMTime::fromSeconds(each.seconds, each.timescale).value, each.value) << each.seconds;
    EXPECT_EQ((CMTime{8792, 600}.seconds()), 8792 / 600.0);
    EXPECT_EQ(kCMTimePositiveInfinity.seconds(), infinity);
}

} // namespace
} // namespace sela
