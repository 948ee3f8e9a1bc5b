#pragma once

#include "platform/uikit/UIWindow.h"

#include <QImage>
#include <QRect>

#include <optional>

namespace sela {

/// The line around the control that has the keyboard's focus. Main thread only.
class FocusRing {
public:
    /// Where a ring is drawn, in window points.
    struct Place {
        CGRect rect;
        double cornerRadius = 0;

        bool operator==(const Place&) const = default;
    };

    /// Puts the ring around `view` (null: takes it away) and returns the part of the window (points) that
    /// changes; empty when nothing does.
    CGRect move(const UIWindow& window, const UIView* view);

    /// Draws the ring within `area` (pixels) of a picture of the window.
    void paint(QImage& target, const QRect& area, double pixelsPerPoint,
               const UITraitCollection& traits) const;

private:
    std::optional<Place> place_;
};

} // namespace sela
