#include "host/CardPlacement.h"

#include "host/Displays.h"
#include "share/SelaShareExtensionEntryVc.h"
#include "ui/UIScale.h"

#include <QScreen>

#include <algorithm>

namespace sela {

namespace {

/// The screen of the phone that the card was drawn for, in points.
constexpr CGSize phone{375, 667};

/// The smallest factor of the screens, on very small displays.
constexpr double smallestScale = 0.2;

CGSize cardSize(CGSize screen) {
    const double scale = getUIScale(screen);
    const CGSize card = SelaShareExtensionEntryVc::cardSize;
    return {card.width * scale, card.height * scale};
}

} // namespace

CGSize CardPlacement::screenFor(CGSize display) {
    const CGSize card = SelaShareExtensionEntryVc::cardSize;
    const double fitting = std::max(smallestScale, std::min((display.width - 2 * air) / card.width,
                                                            (display.height - 2 * air) / card.height));
    // A phone held sideways, or a laptop: as large as on a phone held upright.
    const bool isLow = display.width > display.height && display.height < tabletWidth;
    const double wanted = isLow ? 1 : getUIScale(display);
    if (!isLow && wanted <= fitting)
        return display;
    const double side = shorterSideForUIScale(std::min(wanted, fitting));
    return {side, side / phone.width * phone.height};
}

CardPlacement CardPlacement::on(const CommandLine& line) {
    if (line.screenWidth && line.screenHeight) {
        const CGSize asked{*line.screenWidth, *line.screenHeight};
        return {Style::asAsked, asked, asked};
    }
    const QScreen* const display = line.headless ? nullptr : displayWithPointer();
    if (!display)
        return {Style::asAsked, phone, phone};
    const double unit = line.hasScale ? line.scale / display->devicePixelRatio() : 1;
    const bool composites = desktopComposites();
    // Unless the window covers the whole display, the desktop's panels stay visible.
    const QSize units = composites && !isWayland() ? display->size() : display->availableSize();
    const CGSize room{units.width() / unit, units.height() / unit};
    const CGSize screen = screenFor(room);
    return composites ? CardPlacement{Style::overDisplay, screen, room}
                      : CardPlacement{Style::dialog, screen, cardSize(screen)};
}

} // namespace sela
