#pragma once

namespace sela {

/// The pace of an animation: maps the fraction of its duration that has passed to the fraction of the change
/// that is shown, both 0 to 1. A value; any thread may use it.
class CAMediaTimingFunction {
public:
    /// A cubic Bézier curve from (0, 0) to (1, 1) with the two control points; x1 and x2 lie in 0 to 1.
    constexpr CAMediaTimingFunction(double x1, double y1, double x2, double y2)
        : x1_(x1), y1_(y1), x2_(x2), y2_(y2) {}

    static constexpr CAMediaTimingFunction linear() { return {0, 0, 1, 1}; }

    /// The platform's ease-in-out curve.
    static constexpr CAMediaTimingFunction easeInEaseOut() { return {0.42, 0, 0.58, 1}; }

    /// The shown fraction at `time`; below 0 it is 0, above 1 it is 1.
    double value(double time) const;

    bool operator==(const CAMediaTimingFunction&) const = default;

private:
    double x1_, y1_, x2_, y2_;
};

} // namespace sela
