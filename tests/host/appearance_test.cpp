#include "host/DesktopAppearance.h"

#include "platform/foundation/Dumpable.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <sys/prctl.h>

namespace sela {

namespace {

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString group = QStringLiteral("org.freedesktop.appearance");
const QString interfaceGroup = QStringLiteral("org.gnome.desktop.interface");

/// A stand-in for the desktop's settings portal.
class Portal : public QDBusVirtualObject {
public:
    explicit Portal(const QDBusConnection& bus) : bus_(bus) {
        bus_.registerVirtualObject(portalPath, this, QDBusConnection::SingleNode);
        bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    ~Portal() override { bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop")); }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != QLatin1String("ReadAll") ||
            message.arguments() != QVariantList{QStringList{group, interfaceGroup}})
            return false;
        couldLookAtCaller = ::prctl(PR_GET_DUMPABLE) == 1;
        return bus.send(message.createReply(QVariant::fromValue(
            QMap<QString, QVariantMap>{{group, settings}, {interfaceGroup, interfaceSettings}})));
    }

    void change(const QString& key, const QVariant& value, const QString& inGroup = group) {
        QDBusMessage signal =
            QDBusMessage::createSignal(portalPath, portalInterface, QStringLiteral("SettingChanged"));
        signal << inGroup << key << QVariant::fromValue(QDBusVariant(value));
        bus_.send(signal);
    }

    bool couldLookAtCaller = false; ///< as a real one must, at the call
    QVariantMap settings;
    QVariantMap interfaceSettings;

private:
    QDBusConnection bus_;
};

/// A bus and an application, made for all tests once.
class Desktop : public testing::Environment {
public:
    void SetUp() override {
        bus_.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                   QStringLiteral("--print-address=1")});
        ASSERT_TRUE(bus_.waitForReadyRead(10'000));
        const QByteArray address = bus_.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static char name[] = "appearance_test";
        static char* arguments[] = {name, nullptr};
        static int count = 1;
        application_ = std::make_unique<QGuiApplication>(count, arguments);
        qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
        QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("portal"));
    }
    void TearDown() override {
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
        application_.reset();
        bus_.terminate();
        bus_.waitForFinished();
    }

private:
    QProcess bus_;
    std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const testing::Environment* const desktop = testing::AddGlobalTestEnvironment(new Desktop);

QDBusConnection portalBus() {
    return QDBusConnection(QStringLiteral("portal"));
}

void setPaletteColors(const QColor& ground, const QColor& text) {
    QPalette palette;
    palette.setColor(QPalette::Window, ground);
    palette.setColor(QPalette::WindowText, text);
    QGuiApplication::setPalette(palette);
}

constexpr auto light = UIUserInterfaceStyle::light;
constexpr auto dark = UIUserInterfaceStyle::dark;
constexpr auto normal = UIAccessibilityContrast::normal;
constexpr auto high = UIAccessibilityContrast::high;

class DesktopAppearanceTest : public testing::Test {
protected:
    void SetUp() override { setPaletteColors(QColor(240, 240, 240), Qt::black); }

    /// Waits until the appearance is this.
    static bool becomes(const DesktopAppearance& appearance, const UITraitCollection& traits) {
        return QTest::qWaitFor([&] { return appearance.traitCollection() == traits; }, 5000);
    }
};

} // namespace

TEST_F(DesktopAppearanceTest, FollowsThePortalFromItsAnswerOn) {
    const QString animations = QStringLiteral("enable-animations");
    makeUndumpable();
    Portal portal(portalBus());
    portal.settings = {{QStringLiteral("color-scheme"), 1u}, {QStringLiteral("contrast"), 1u}};
    portal.interfaceSettings = {{animations, false}};
    DesktopAppearance appearance({});
    EXPECT_EQ(appearance.traitCollection(), UITraitCollection(light, normal)) << "it waited";
    EXPECT_FALSE(appearance.reducesMotion());
    int changes = 0;
    appearance.setChangeHandler([&] { ++changes; });
    EXPECT_TRUE(becomes(appearance, {dark, high}));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(portal.couldLookAtCaller);
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE), 0);
    portal.change(QStringLiteral("color-scheme"), 2u);
    EXPECT_TRUE(becomes(appearance, {light, high}));
    portal.change(QStringLiteral("contrast"), 0u);
    EXPECT_TRUE(becomes(appearance, {light, normal}));
    EXPECT_EQ(changes, 3);
    const auto reducesMotion = [&](bool reduces) {
        return QTest::qWaitFor([&] { return appearance.reducesMotion() == reduces; }, 5000);
    };
    EXPECT_TRUE(reducesMotion(true));
    portal.change(animations, true, interfaceGroup);
    EXPECT_TRUE(reducesMotion(false));
    portal.change(QStringLiteral("reduced-motion"), 1u);
    EXPECT_TRUE(reducesMotion(true));
}

TEST_F(DesktopAppearanceTest, FollowsThePaletteWhereThePortalSaysNothing) {
    DesktopAppearance appearance({});
    int changes = 0;
    appearance.setChangeHandler([&] { ++changes; });
    setPaletteColors(QColor(40, 40, 44), QColor(230, 230, 230));
    EXPECT_TRUE(becomes(appearance, {dark, normal}));
    setPaletteColors(Qt::black, Qt::white);
    EXPECT_TRUE(becomes(appearance, {dark, high}));
    EXPECT_EQ(changes, 2);
}

TEST_F(DesktopAppearanceTest, TheCommandLineAndTheEnvironmentDecide) {
    Portal portal(portalBus());
    portal.settings = {{QStringLiteral("color-scheme"), 1u}, {QStringLiteral("contrast"), 1u}};
    CommandLine line;
    line.appearance = CommandLine::Appearance::light;
    DesktopAppearance half(line);
    EXPECT_TRUE(becomes(half, {light, high}));
    line.contrast = CommandLine::Contrast::normal;
    EXPECT_EQ(DesktopAppearance(line).traitCollection(), UITraitCollection(light, normal));
    qputenv("SELA_REDUCED_MOTION", "0");
    EXPECT_FALSE(DesktopAppearance({}).reducesMotion());
    qputenv("SELA_REDUCED_MOTION", "1");
    EXPECT_TRUE(DesktopAppearance({}).reducesMotion());
    qunsetenv("SELA_REDUCED_MOTION");
}

} // namespace sela
