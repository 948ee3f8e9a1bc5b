#include "platform/media/CMTime.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <tuple>

namespace sela {
namespace {

TEST(CMTime, RoundsToTheNearestUnitAndStaysInRange) {
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    const std::tuple<double, std::int32_t, std::int64_t> cases[] = {
        {14.654, 600, 8792},    {0.1, 1, 0},           {0.5, 1, 1},      {-1.5, 1000, -1500},
        {std::nan(""), 600, 0}, {infinity, 600, most}, {1e300, 1, most}, {-infinity, 600, least}};
    for (const auto& [seconds, timescale, value] : cases)
        EXPECT_EQ(CMTime::fromSeconds(seconds, timescale).value, value) << seconds;
    EXPECT_EQ((CMTime{8792, 600}.seconds()), 8792 / 600.0);
    EXPECT_EQ(kCMTimePositiveInfinity.seconds(), infinity);
}

} // namespace
} // namespace sela
