#pragma once

#include "platform/uikit/UIView.h"

#include <QRegion>
#include <QTransform>

namespace sela {

/// Pixels that are opaque once a view and its subviews are drawn, so that what lies below need not be drawn
/// there: those below opaque backgrounds, without rounded corners. Not all such pixels, but none besides.
/// `toPixels` leads from the superview's points to pixels. Main thread only.
QRegion coveredPixels(const UIView& view, const QTransform& toPixels, double pixelsPerPoint,
                      const UITraitCollection& traits);

} // namespace sela
