#pragma once

#include "host/ViewPainter.h"
#include "platform/uikit/UIWindow.h"

#include <QImage>

#include <string>

namespace sela {

/// Pictures of a window's view tree, made without any display. Main thread only.
namespace Snapshot {

/// The colour in place of the application below the window, so that dimming is visible.
QColor backdrop(const UITraitCollection& traits);

/// The window at this moment over the backdrop, `pixelsPerPoint` pixels to a point, laid out first.
QImage picture(UIWindow& window, ViewPainter& painter, double pixelsPerPoint);

/// The bytes of that picture as a PNG file.
std::string png(UIWindow& window, ViewPainter& painter, double pixelsPerPoint);

} // namespace Snapshot

} // namespace sela
