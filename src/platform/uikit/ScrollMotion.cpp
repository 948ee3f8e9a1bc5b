#include "platform/uikit/ScrollMotion.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

/// The platform's normal deceleration: each millisecond keeps 0.998 of the velocity.
const double decay = -std::log(0.998) * 1000;

/// The spring at an end, critically damped, in radians a second: a hard flick overshoots by about a hundred
/// points and is back after half a second.
constexpr double springFrequency = 12;

/// A roll slower than this (points a second) is at rest, and so is a spring nearer to its end than this
/// (points).
constexpr double restVelocity = 6;
constexpr double restDistance = 0.5;

/// The share of a finger's movement past the end that the content follows at first.
constexpr double rubberBandStrength = 0.55;

} // namespace

ScrollMotion::ScrollMotion(double position, double velocity, double minimum, double maximum)
    : start_(position), velocity_(velocity), end_(std::clamp(position, minimum, maximum)),
      springStart_(position), springVelocity_(velocity) {
    springs_ = position != end_;
    if (!springs_ && std::abs(velocity) > restVelocity) {
        rollDuration_ = std::log(std::abs(velocity) / restVelocity) / decay;
        end_ = velocity > 0 ? maximum : minimum;
        const double reach = 1 - (end_ - start_) * decay / velocity_;
        if (reach > 0 && -std::log(reach) / decay < rollDuration_) {
            rollDuration_ = -std::log(reach) / decay;
            springs_ = true;
            springStart_ = end_;
            springVelocity_ = velocity * reach;
        }
    }
    duration_ = rollDuration_;
    if (springs_) {
        constexpr double step = 1.0 / 60;
        constexpr double longestSpring = 2;
        const double start = rollDuration_;
        do
            duration_ += step;
        while (std::abs(spring(duration_ - start) - end_) > restDistance &&
               duration_ - start < longestSpring);
    }
}

double ScrollMotion::position(double elapsed) const {
    if (springs_ && elapsed >= duration_)
        return end_;
    if (springs_ && elapsed >= rollDuration_)
        return spring(elapsed - rollDuration_);
    return start_ + velocity_ / decay * (1 - std::exp(-decay * std::clamp(elapsed, 0.0, rollDuration_)));
}

double ScrollMotion::spring(double elapsed) const {
    const double distance = springStart_ - end_;
    return end_ + (distance + (springVelocity_ + springFrequency * distance) * elapsed) *
                      std::exp(-springFrequency * elapsed);
}

double ScrollMotion::rubberBand(double wanted, double minimum, double maximum, double dimension) {
    const double nearest = std::clamp(wanted, minimum, maximum);
    const double excess = std::abs(wanted - nearest);
    if (excess == 0 || dimension <= 0)
        return nearest;
    const double shown = dimension * (1 - 1 / (excess * rubberBandStrength / dimension + 1));
    return wanted > nearest ? nearest + shown : nearest - shown;
}

double ScrollMotion::pullFor(double shown, double minimum, double maximum, double dimension) {
    const double nearest = std::clamp(shown, minimum, maximum);
    const double excess = std::abs(shown - nearest);
    if (excess == 0 || excess >= dimension)
        return shown;
    const double pull = dimension / rubberBandStrength * (1 / (1 - excess / dimension) - 1);
    return shown > nearest ? nearest + pull : nearest - pull;
}

} // namespace sela
