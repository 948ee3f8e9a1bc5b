#pragma once

class QScreen;

namespace sela {

// What the window system is like that the QGuiApplication is connected to. Main thread only.

bool isWayland();

/// Whether the desktop lays windows over one another with their transparency, so that a translucent window
/// dims what is below it.
bool desktopComposites();

/// The display that the pointer is on, where the window system tells; else the first one. Null without any.
QScreen* displayWithPointer();

} // namespace sela
