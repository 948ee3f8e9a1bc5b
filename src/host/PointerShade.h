#pragma once

#include "platform/uikit/UIWindow.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace sela {

/// The shade over the control that the mouse points at, darker while it is pressed. Main thread only.
class PointerShade {
public:
    /// Puts the shade on `view` (null: takes it away) and returns the part of the window (points) that
    /// changes; empty when nothing does.
    CGRect move(const UIWindow& window, const UIView* view, bool pressed);

    /// Draws the shade within `area` (pixels) of a picture of the window.
    void paint(QImage& target, const QRect& area, double pixelsPerPoint,
               const UITraitCollection& traits) const;

private:
    struct Place {
        CGRect rect; ///< in window points
        double cornerRadius = 0;
        bool pressed = false;

        bool operator==(const Place&) const = default;
    };

    std::optional<Place> place_;
};

} // namespace sela
