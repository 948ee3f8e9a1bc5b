#pragma once

#include "host/CommandLine.h"
#include "platform/uikit/Geometry.h"
#include "ui/UIScale.h"

namespace sela {

/// Where the card stands on the desktop, and so how large a screen the extension's screens are told they
/// have. A value.
struct CardPlacement {
    enum class Style {
        overDisplay, ///< centred in a translucent window over the whole display
        dialog,      ///< as a window of its own, without a compositor
        asAsked,     ///< in a window of the size that the command line asks for, or that nobody sees
    };

    /// The room that is left on each side of the card, in points.
    static constexpr double air = 24;

    Style style = Style::asAsked;
    CGSize screen; ///< the size in points that the screens are measured for
    CGSize window; ///< the size in points of the window that shows them

    /// The factor of the screens, by which what the host lays over them grows, too.
    double scale() const { return getUIScale(screen); }

    /// For the display with the pointer, which the QGuiApplication is connected to. Main thread only.
    static CardPlacement on(const CommandLine& line);

    /// The screen that the screens are measured for on a display of this size (points). It is the display
    /// itself where the card, sized by the screens' rule, fits with room on all sides. A display that is wide
    /// but low counts as an upright phone of a size that fits its height, so that the card is neither cut off
    /// nor larger than on a higher display.
    static CGSize screenFor(CGSize display);
};

} // namespace sela
