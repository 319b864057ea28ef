#include "ui/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMap>
#include <QProcess>

#include <gmock/gmock.h>

#include "qtmain/EventLoop.h"

namespace ombrel {
namespace {

using Settings = QMap<QString, QVariantMap>;

/// What answers in place of the desktop's settings portal.
class Portal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    QVariantMap appearance;

public Q_SLOTS:
    Settings ReadAll(const QStringList& spaces) const {
        Settings settings;
        if (spaces.contains(QStringLiteral("org.freedesktop.appearance")))
            settings.insert(QStringLiteral("org.freedesktop.appearance"), appearance);
        return settings;
    }

Q_SIGNALS:
    void SettingChanged(const QString& space, const QString& key, const QDBusVariant& value);
};

/// A bus of the test's own with a portal on it. One test only, because the program's connection to its
/// session bus is made once.
TEST(DesktopAppearanceWithAPortal, FollowsWhatItSaysNowAndLater) {
    QProcess daemon;
    daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                 QStringLiteral("--print-address")});
    if (!daemon.waitForStarted()) GTEST_SKIP() << "there is no dbus-daemon";
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QByteArray address = daemon.readLine().trimmed();
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);

    // One that asks before there is a portal, and before anything of this test has told the bus library what
    // is in the portal's messages.
    Theme earlyTheme;
    DesktopAppearance early(earlyTheme);
    early.follow();
    ASSERT_TRUE(testing::runUntilQuiet());

    qDBusRegisterMetaType<Settings>();
    auto bus = QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("portal"));
    Portal portal;
    portal.appearance = {{QStringLiteral("color-scheme"), 1U}, {QStringLiteral("contrast"), 1U}};
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                   QDBusConnection::ExportAllContents));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));

    Theme theme;
    DesktopAppearance desktop(theme);
    desktop.follow();
    EXPECT_FALSE(theme.appearance().isDark);
    EXPECT_TRUE(testing::runUntil(
        [&] { return theme.appearance() == Appearance{.isDark = true, .isHighContrast = true}; }));

    const auto tell = [&](const char* key, unsigned value) {
        Q_EMIT portal.SettingChanged(QStringLiteral("org.freedesktop.appearance"), QString::fromLatin1(key),
                                     QDBusVariant(value));
    };
    tell("color-scheme", 1);
    EXPECT_TRUE(testing::runUntil([&] { return earlyTheme.appearance().isDark; }));
    tell("color-scheme", 2);
    tell("contrast", 0);
    tell("reduced-motion", 1);
    EXPECT_TRUE(testing::runUntil([&] { return theme.appearance() == Appearance{.isMotionReduced = true}; }));
    const auto animate = [&](bool isOn) {
        Q_EMIT portal.SettingChanged(QStringLiteral("org.gnome.desktop.interface"),
                                     QStringLiteral("enable-animations"), QDBusVariant(isOn));
    };
    tell("reduced-motion", 0);
    EXPECT_TRUE(testing::runUntil([&] { return !theme.appearance().isMotionReduced; }));
    animate(false);
    EXPECT_TRUE(testing::runUntil([&] { return theme.appearance().isMotionReduced; }));
    animate(true);
    EXPECT_TRUE(testing::runUntil([&] { return !theme.appearance().isMotionReduced; }));
    const auto scaleAnimations = [&](const char* factor) {
        Q_EMIT portal.SettingChanged(QStringLiteral("org.kde.kdeglobals.KDE"),
                                     QStringLiteral("AnimationDurationFactor"),
                                     QDBusVariant(QString::fromLatin1(factor)));
    };
    scaleAnimations("0");
    EXPECT_TRUE(testing::runUntil([&] { return theme.appearance().isMotionReduced; }));
    scaleAnimations("0.5");
    EXPECT_TRUE(testing::runUntil([&] { return !theme.appearance().isMotionReduced; }));
    tell("color-scheme", 1);
    EXPECT_TRUE(testing::runUntil([&] { return theme.appearance().isDark; }));
    // No preference: what the palette said in the first place.
    tell("color-scheme", 0);
    EXPECT_TRUE(testing::runUntil([&] { return !theme.appearance().isDark; }));

    QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    QDBusConnection::disconnectFromBus(QStringLiteral("qt_default_session_bus"));
    before.isEmpty() ? qunsetenv("DBUS_SESSION_BUS_ADDRESS") : qputenv("DBUS_SESSION_BUS_ADDRESS", before);
    daemon.terminate();
    daemon.waitForFinished();
}

} // namespace
} // namespace ombrel

#include "DesktopAppearanceTest.moc"
