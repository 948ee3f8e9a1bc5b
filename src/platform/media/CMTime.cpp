#include "platform/media/CMTime.h"

#include <cmath>
#include <limits>

namespace sela {

CMTime CMTime::fromSeconds(double seconds, std::int32_t timescale) {
    const double value = std::round(seconds * timescale);
    // 2^63 is exact as a double, the largest 64-bit integer is not.
    constexpr double limit = 9223372036854775808.0;
    if (std::isnan(value))
        return {0, timescale};
    if (value >= limit)
        return {std::numeric_limits<std::int64_t>::max(), timescale};
    if (value < -limit)
        return {std::numeric_limits<std::int64_t>::min(), timescale};
    return {static_cast<std::int64_t>(value), timescale};
}

double CMTime::seconds() const {
    if (positiveInfinity)
        return std::numeric_limits<double>::infinity();
    return static_cast<double>(value) / timescale;
}

} // namespace sela
