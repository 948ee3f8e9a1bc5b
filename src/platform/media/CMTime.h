#pragma once

#include <cstdint>

namespace sela {

/// A time or a duration of media: `value` / `timescale` seconds, or positive infinity. A value.
struct CMTime {
    std::int64_t value = 0;
    std::int32_t timescale = 1; ///< units a second, above 0
    bool positiveInfinity = false;

    /// The time nearest to `seconds` that `timescale` (above 0) can express. NaN gives zero; seconds out of
    /// range give the largest or smallest value.
    static CMTime fromSeconds(double seconds, std::int32_t timescale);

    /// Seconds; infinity for the infinite time.
    double seconds() const;

    bool operator==(const CMTime&) const = default;
};

inline constexpr CMTime kCMTimeZero{};
inline constexpr CMTime kCMTimePositiveInfinity{0, 1, true};

} // namespace sela
