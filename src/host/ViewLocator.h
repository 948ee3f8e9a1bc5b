#pragma once

#include "platform/uikit/UIWindow.h"

#include <optional>
#include <string_view>

namespace sela {

/// Finds touchable views by name. Main thread only.
namespace ViewLocator {

/// Where (window points) a tap reaches the topmost view called `name`. "row:SECTION:ROW" is that row of the
/// topmost table, and "NAME:SECTION" the view of that name in the section's first row; both are
/// scrolled to when they are out of view. Absent when there is no such view, or it is hidden or covered.
std::optional<CGPoint> tapPoint(UIWindow& window, std::string_view name);

/// The key command with this input of the topmost view that has one and could be tapped, with that view;
/// absent when there is none.
struct KeyTarget {
    UIView& view;
    CGPoint tapPoint;
    UIKeyCommand command;
};
std::optional<KeyTarget> keyTarget(UIWindow& window, std::string_view input);

} // namespace ViewLocator

} // namespace sela
