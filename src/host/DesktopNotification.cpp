#include "host/DesktopNotification.h"

#include "host/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

namespace sela {

namespace {

constexpr int longestWait = 1000; ///< milliseconds

/// The service decides how long a notification is shown.
constexpr int defaultDuration = -1;

} // namespace

void showDesktopNotification(const std::string& title, const std::string& body) {
    if (!hasSessionBus())
        return;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    // Services interpret markup in the body only.
    message << QStringLiteral("Sela") << 0u << QStringLiteral("xyz.sela.share")
            << QString::fromStdString(title) << QString::fromStdString(body).toHtmlEscaped() << QStringList()
            << QVariantMap() << defaultDuration;
    bus.call(message, QDBus::Block, longestWait);
}

} // namespace sela
