#pragma once

#include "platform/uikit/Geometry.h"

namespace sela {

class UIViewController;

/// From this shorter side on, in points, a screen is a tablet's.
inline constexpr double tabletWidth = 768;

/// The factor by which a screen multiplies its design lengths, from the shorter side m of the controller's
/// root view: m / 375 below 768 points, the width of the phone that the screens were drawn for, and m / 768
/// from there on, so that a tablet shows them at a phone's size. The factor falls from about 2.05 to 1.0 at
/// 768 points; that is intended. Loads the root view when it is not loaded yet. Main thread only.
double getUIScale(UIViewController& controller);

/// The same for a screen of that size. Any thread.
double getUIScale(CGSize screen);

/// The shorter side in points of a screen that has this factor: a phone's if possible, else a tablet's. Any
/// thread.
double shorterSideForUIScale(double scale);

} // namespace sela
