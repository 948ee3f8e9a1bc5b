#pragma once

namespace sela {

class UIViewController;

/// The factor by which a screen multiplies its design lengths, from the shorter side m of the controller's
/// root view: m / 375 below 768 points, the width of the phone that the screens were drawn for, and m / 768
/// from there on, so that a tablet shows them at a phone's size. The factor falls from about 2.05 to 1.0 at
/// 768 points; that is intended. Loads the root view when it is not there yet. Main thread only.
double getUIScale(UIViewController& controller);

} // namespace sela
