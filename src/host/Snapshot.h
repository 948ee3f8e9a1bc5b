#pragma once

#include "host/ViewPainter.h"
#include "platform/uikit/UIWindow.h"

#include <QImage>

#include <string>

namespace sela {

/// Pictures of a window's view tree, made without any display. Main thread only.
namespace Snapshot {

/// The colour that stands for the application below the window, so that what is dimmed shows as dimmed.
QColor backdrop(const UITraitCollection& traits);

/// The window at this moment over the backdrop, `pixelsPerPoint` pixels to a point, laid out first.
QImage picture(UIWindow& window, ViewPainter& painter, double pixelsPerPoint);

/// Writes that picture to the PNG file `path`, replacing one that exists. False when it cannot be written.
bool write(UIWindow& window, ViewPainter& painter, double pixelsPerPoint, const std::string& path);

} // namespace Snapshot

} // namespace sela
