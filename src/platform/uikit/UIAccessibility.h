#pragma once

#include <functional>
#include <string>

namespace sela {

/// The desktop's accessibility settings, and announcements by a screen reader. Main thread only.
namespace UIAccessibility {

/// Whether motion is to be reduced: animations take effect at once, a shake is not shown, spinners turn
/// slowly. Code that waits for an animation's end waits for the main queue's next turn instead.
bool isReduceMotionEnabled();
void setReduceMotionEnabled(bool enabled);

/// Has a screen reader say `text`; nothing happens without one.
void postAnnouncement(const std::string& text);

/// The function that passes announcements to the screen reader; empty: none.
void setAnnouncementHandler(std::function<void(const std::string& text)> handler);

} // namespace UIAccessibility

} // namespace sela
