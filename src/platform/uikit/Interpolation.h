#pragma once

#include "platform/uikit/Geometry.h"
#include "platform/uikit/UIColor.h"

#include <optional>

namespace sela {

/// The value at `fraction` of the way from `from` (0) to `to` (1), component by component; a colour that is
/// absent counts as a clear one.
double interpolated(double from, double to, double fraction);
CGPoint interpolated(CGPoint from, CGPoint to, double fraction);
CGRect interpolated(const CGRect& from, const CGRect& to, double fraction);
CGAffineTransform interpolated(const CGAffineTransform& from, const CGAffineTransform& to, double fraction);
std::optional<UIColor> interpolated(const std::optional<UIColor>& from, const std::optional<UIColor>& to,
                                    double fraction);

} // namespace sela
