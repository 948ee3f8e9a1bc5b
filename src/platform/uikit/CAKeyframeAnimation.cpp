#include "platform/uikit/CAKeyframeAnimation.h"

#include <cmath>
#include <cstddef>

namespace sela {

double CAKeyframeAnimation::value(double elapsed) const {
    if (values.empty() || elapsed >= duration)
        return 0;
    if (elapsed <= 0 || values.size() == 1)
        return values.front();
    const double position = elapsed / duration * static_cast<double>(values.size() - 1);
    const double index = std::floor(position);
    const auto key = static_cast<std::size_t>(index);
    return std::lerp(values[key], values[key + 1], timingFunction.value(position - index));
}

} // namespace sela
