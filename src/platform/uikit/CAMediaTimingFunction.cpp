#include "platform/uikit/CAMediaTimingFunction.h"

namespace sela {

namespace {

double bezier(double first, double second, double parameter) {
    const double rest = 1 - parameter;
    return 3 * rest * rest * parameter * first + 3 * rest * parameter * parameter * second +
           parameter * parameter * parameter;
}

} // namespace

double CAMediaTimingFunction::value(double time) const {
    if (time <= 0)
        return 0;
    if (time >= 1)
        return 1;
    // The curve's x grows with its parameter, so halving finds the parameter; 40 halvings reach 1e-12.
    double low = 0;
    double high = 1;
    for (int step = 0; step < 40; ++step) {
        const double middle = (low + high) / 2;
        (bezier(x1_, x2_, middle) < time ? low : high) = middle;
    }
    return bezier(y1_, y2_, (low + high) / 2);
}

} // namespace sela
