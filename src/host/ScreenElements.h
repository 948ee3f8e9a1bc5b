#pragma once

#include "platform/uikit/UIWindow.h"

#include <vector>

namespace sela {

/// The elements of a screen for users who neither see nor touch it: controls, texts and lists, without the
/// views that only place or decorate them. Main thread only.
namespace ScreenElements {

/// Whether a tap on the element does something.
bool isControl(const UIView& view);

/// The elements that are shown below `view`, in reading order, without those that lie inside another one.
/// Inside a control there are only further controls, since the control's label says what its texts say.
std::vector<UIView*> inside(UIWindow& window, const UIView& view);

/// The nearest element around `view`; null when there is none.
UIView* around(const UIView& view);

/// The control that a tap at `point` (window points) activates; null when there is none.
UIView* controlAt(UIWindow& window, CGPoint point);

/// Taps the element as a finger would. False, and nothing happens, when it cannot be reached.
bool tap(UIWindow& window, UIView& view);

} // namespace ScreenElements

} // namespace sela
