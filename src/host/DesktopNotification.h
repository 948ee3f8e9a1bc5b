#pragma once

#include <string>

namespace sela {

/// Shows a notification of the desktop's, by its notification service (org.freedesktop.Notifications), which
/// keeps it when this process ends. Waits a second at most for the service to accept it; without a service
/// nothing happens. Needs a QGuiApplication.
void showDesktopNotification(const std::string& title, const std::string& body);

} // namespace sela
