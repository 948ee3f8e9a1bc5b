#pragma once

#include "platform/uikit/UIWindow.h"

#include <vector>

namespace sela {

/// What on a screen means something by itself to somebody who works it without seeing or touching it:
/// controls, texts and lists, among the views that only place or adorn them. Main thread only.
namespace ScreenElements {

/// Whether a tap on the element does something.
bool isControl(const UIView& view);

/// The elements that are shown below `view`, in reading order, without those that lie inside another one.
/// Inside a control there are only further controls, since the control's label says what its texts say.
std::vector<UIView*> inside(UIWindow& window, const UIView& view);

/// The nearest element around `view`; null when there is none.
UIView* around(const UIView& view);

/// The control that a tap at `point` (window points) works; null when it works none.
UIView* controlAt(UIWindow& window, CGPoint point);

/// Taps the element as a finger would. False when it cannot be reached, and nothing happens.
bool tap(UIWindow& window, UIView& view);

} // namespace ScreenElements

} // namespace sela
