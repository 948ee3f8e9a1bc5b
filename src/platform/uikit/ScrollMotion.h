#pragma once

namespace sela {

/// How a list rolls on after a finger released it: a decaying roll within the ends, and past an end a spring
/// back to it. A value; positions in points, times in seconds, each a function of the time since the start.
class ScrollMotion {
public:
    /// Starts at `position` with `velocity` (points a second) between the ends `minimum` and `maximum`.
    ScrollMotion(double position, double velocity, double minimum, double maximum);

    double position(double elapsed) const;

    /// Seconds until it comes to rest.
    double duration() const { return duration_; }

    /// Where a finger has pulled the content to when it should be at `wanted`: past an end it follows ever
    /// less, never by more than `dimension`, the visible length.
    static double rubberBand(double wanted, double minimum, double maximum, double dimension);

    /// The position that a finger pulls to when the content is shown at `shown`: the inverse of `rubberBand`.
    static double pullFor(double shown, double minimum, double maximum, double dimension);

private:
    double spring(double elapsed) const;

    double start_;
    double velocity_;
    double rollDuration_ = 0;
    double end_ = 0;
    double springStart_ = 0;
    double springVelocity_ = 0;
    bool springs_ = false;
    double duration_ = 0;
};

} // namespace sela
