#pragma once

namespace sela {

/// Whether the desktop lays windows over one another with their transparency, so that a translucent window
/// dims what is below it. Asked of the display that the QGuiApplication is connected to; main thread only.
bool desktopComposites();

} // namespace sela
