#pragma once

#include <functional>
#include <string>

namespace sela {

/// What the desktop says about how its user works, and the way to say something to a screen reader. Main
/// thread only.
namespace UIAccessibility {

/// Whether nothing is to move that need not: animations take their effect at once, a shake does not show,
/// spinners turn slowly. What waits for an animation's end waits for the main queue's next turn instead.
bool isReduceMotionEnabled();
void setReduceMotionEnabled(bool enabled);

/// Has a screen reader say `text`; nothing happens where nobody listens.
void postAnnouncement(const std::string& text);

/// Whoever hands announcements to the screen reader; empty: nobody.
void setAnnouncementHandler(std::function<void(const std::string& text)> handler);

} // namespace UIAccessibility

} // namespace sela
