#include "host/DesktopAppearance.h"

#include "host/SessionBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QMap>
#include <QPalette>
#include <QTimer>
#include <QVariant>

#include <algorithm>
#include <chrono>

namespace sela {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString interfaceGroup = QStringLiteral("org.gnome.desktop.interface");

/// Seconds that the portal has to inspect its caller, which it does at the first call, before anything of the
/// vault is read.
constexpr auto longestLook = std::chrono::seconds(3);

using SettingGroups = QMap<QString, QVariantMap>;

UITraitCollection paletteTraits() {
    const QPalette palette = QGuiApplication::palette();
    const float ground = palette.color(QPalette::Window).lightnessF();
    const float text = palette.color(QPalette::WindowText).lightnessF();
    // Black on white and white on black are what themes of high contrast are made of, and no others.
    const bool isHigh = std::min(ground, text) < 0.01F && std::max(ground, text) > 0.99F;
    return {ground < 0.5F ? UIUserInterfaceStyle::dark : UIUserInterfaceStyle::light,
            isHigh ? UIAccessibilityContrast::high : UIAccessibilityContrast::normal};
}

std::optional<bool> motionOfEnvironment() {
    const QString text = qEnvironmentVariable("SELA_REDUCED_MOTION");
    if (text != QLatin1String("0") && text != QLatin1String("1"))
        return std::nullopt;
    return text == QLatin1String("1");
}

} // namespace

DesktopAppearance::DesktopAppearance(const CommandLine& line)
    : appearance_(line.appearance), contrast_(line.contrast),
      environmentReducesMotion_(motionOfEnvironment()) {
    const bool isDecided = appearance_ != CommandLine::Appearance::automatic &&
                           contrast_ != CommandLine::Contrast::automatic && environmentReducesMotion_;
    if (!isDecided && !line.headless) {
        qGuiApp->installEventFilter(this);
        if (hasSessionBus())
            askPortal();
    }
    reported_ = traitCollection();
    reportedReducesMotion_ = reducesMotion();
}

bool DesktopAppearance::reducesMotion() const {
    return environmentReducesMotion_.value_or(portalReducesMotion_ || !desktopAnimates_);
}

UITraitCollection DesktopAppearance::traitCollection() const {
    UITraitCollection traits = paletteTraits();
    traits.userInterfaceStyle = portalStyle_.value_or(traits.userInterfaceStyle);
    traits.accessibilityContrast = portalContrast_.value_or(traits.accessibilityContrast);
    if (appearance_ != CommandLine::Appearance::automatic)
        traits.userInterfaceStyle = appearance_ == CommandLine::Appearance::dark
                                        ? UIUserInterfaceStyle::dark
                                        : UIUserInterfaceStyle::light;
    if (contrast_ != CommandLine::Contrast::automatic)
        traits.accessibilityContrast = contrast_ == CommandLine::Contrast::high
                                           ? UIAccessibilityContrast::high
                                           : UIAccessibilityContrast::normal;
    return traits;
}

void DesktopAppearance::askPortal() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // Qt looks up the slot's types by name, and registers this one only on its first use.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    // It answers only callers whose folder in /proc it can open, by which it finds out in which sandbox they
    // are.
    visibleToPortal_.emplace();
    QTimer::singleShot(longestLook, this, [this] { visibleToPortal_.reset(); });
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    question << QStringList{appearanceGroup, interfaceGroup};
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* answer) {
        visibleToPortal_.reset();
        take(*answer);
        answer->deleteLater();
    });
}

/// Without a portal the call returns an error, and the palette decides.
void DesktopAppearance::take(const QDBusPendingCallWatcher& answer) {
    const QDBusMessage message = answer.reply();
    if (message.type() != QDBusMessage::ReplyMessage || message.signature() != QLatin1String("a{sa{sv}}"))
        return;
    const auto groups = qdbus_cast<SettingGroups>(message.arguments().constFirst());
    for (const QString& group : {appearanceGroup, interfaceGroup}) {
        const QVariantMap settings = groups.value(group);
        for (auto setting = settings.begin(); setting != settings.end(); ++setting)
            set(group, setting.key(), setting.value());
    }
    report();
}

void DesktopAppearance::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    set(group, key, value.variant());
    report();
}

/// Those of the appearance are numbers: 1 asks for dark (2 for light), for a higher contrast, for less
/// motion. 0 leaves it to the palette, or to the older setting of the desktop's interface.
void DesktopAppearance::set(const QString& group, const QString& key, const QVariant& value) {
    if (group == interfaceGroup && key == QLatin1String("enable-animations"))
        desktopAnimates_ = value.toBool();
    if (group != appearanceGroup)
        return;
    const uint number = value.toUInt();
    if (key == QLatin1String("color-scheme")) {
        portalStyle_.reset();
        if (number == 1 || number == 2)
            portalStyle_ = number == 1 ? UIUserInterfaceStyle::dark : UIUserInterfaceStyle::light;
    } else if (key == QLatin1String("contrast")) {
        portalContrast_.reset();
        if (number == 1)
            portalContrast_ = UIAccessibilityContrast::high;
    } else if (key == QLatin1String("reduced-motion")) {
        portalReducesMotion_ = number == 1;
    }
}

void DesktopAppearance::report() {
    const UITraitCollection traits = traitCollection();
    if (traits == reported_ && reducesMotion() == reportedReducesMotion_)
        return;
    reported_ = traits;
    reportedReducesMotion_ = reducesMotion();
    if (changeHandler_)
        changeHandler_();
}

bool DesktopAppearance::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        report();
    return QObject::eventFilter(object, event);
}

} // namespace sela
