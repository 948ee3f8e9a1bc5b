#pragma once

class QScreen;

namespace sela {

// Properties of the window system that the QGuiApplication is connected to. Main thread only.

bool isWayland();

/// Whether the desktop composites windows with transparency, so that a translucent window dims what is below
/// it.
bool desktopComposites();

/// The display that the pointer is on, where the window system reports it; else the first one. Null without
/// any.
QScreen* displayWithPointer();

} // namespace sela
