#include "host/Displays.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace sela {

namespace {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

template<class T>
using Reply = std::unique_ptr<T, FreeDeleter>;

/// The number after the display's name, as in ":0.1"; 0 without one.
std::string screenNumber() {
    const std::string display = qEnvironmentVariable("DISPLAY").toStdString();
    const std::size_t colon = display.rfind(':');
    const std::size_t dot = colon == std::string::npos ? colon : display.find('.', colon);
    return dot == std::string::npos ? "0" : display.substr(dot + 1);
}

/// A compositing manager owns a selection named after the screen.
bool hasCompositingManager(xcb_connection_t* connection) {
    const std::string name = "_NET_WM_CM_S" + screenNumber();
    const xcb_intern_atom_cookie_t atomCookie =
        xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, atomCookie, nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const xcb_get_selection_owner_cookie_t ownerCookie = xcb_get_selection_owner(connection, atom->atom);
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, ownerCookie, nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool desktopComposites() {
    if (isWayland())
        return true;
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return false;
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 && x11->connection() && hasCompositingManager(x11->connection());
}

QScreen* displayWithPointer() {
    // Wayland does not reveal the pointer's position.
    QScreen* const display = isWayland() ? nullptr : QGuiApplication::screenAt(QCursor::pos());
    return display ? display : QGuiApplication::primaryScreen();
}

} // namespace sela
