#include "ui/DesktopAppearance.h"

#include "base/MainThread.h"
#include "base/Worker.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>
#include <QPalette>
#include <QPointer>
#include <QVariant>

#include <optional>
#include <system_error>

namespace ombrel {
namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr auto appearanceSpace = "org.freedesktop.appearance";
/// Of desktops whose portals know nothing of reduced motion yet.
constexpr auto gnomeSpace = "org.gnome.desktop.interface", plasmaSpace = "org.kde.kdeglobals.KDE";
constexpr int portalPatience = 3000; // milliseconds

QString string(const char* text) {
    return QString::fromLatin1(text);
}

using Settings = QMap<QString, QVariantMap>;

/// All settings of these spaces, none when no portal answers; nothing when there is no bus. Blocking.
std::optional<Settings> askPortal() {
    // Without an address the bus library would try to launch a bus.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return std::nullopt;
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return std::nullopt;
    auto call = QDBusMessage::createMethodCall(string(service), string(path), string(interface),
                                               QStringLiteral("ReadAll"));
    call << QStringList{string(appearanceSpace), string(gnomeSpace), string(plasmaSpace)};
    const auto reply = bus.call(call, QDBus::Block, portalPatience);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return Settings();
    return qdbus_cast<Settings>(reply.arguments().constFirst());
}

} // namespace

Appearance DesktopAppearance::fromPalette(const QPalette& palette) {
    constexpr int middle = 128;
    return {.isDark = palette.color(QPalette::Window).lightness() < middle};
}

DesktopAppearance::DesktopAppearance(Theme& theme, QObject* parent)
    : QObject(parent), theme_(&theme), fallback_(theme.appearance()) {}

void DesktopAppearance::follow() {
    // The bus library looks up by name what the slot takes, and otherwise refuses to connect it.
    qRegisterMetaType<QDBusVariant>();
    try {
        Worker("ombrel-portal", [self = QPointer(this)](const std::stop_token&) {
            auto settings = askPortal();
            MainThread::post([self, settings = std::move(settings)] {
                if (!self || !settings) return;
                Appearance appearance = self->theme_->appearance();
                for (auto space = settings->begin(); space != settings->end(); ++space)
                    for (auto setting = space->begin(); setting != space->end(); ++setting)
                        appearance = self->with(appearance, space.key(), setting.key(), setting.value());
                self->theme_->setAppearance(appearance);
                QDBusConnection::sessionBus().connect(string(service), string(path), string(interface),
                                                      QStringLiteral("SettingChanged"), self,
                                                      SLOT(settingChanged(QString, QString, QDBusVariant)));
            });
        }).detach();
    } catch (const std::system_error&) {
        // What the palette says stands.
    }
}

void DesktopAppearance::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    theme_->setAppearance(with(theme_->appearance(), space, key, value.variant()));
}

Appearance DesktopAppearance::with(Appearance appearance, const QString& space, const QString& key,
                                   const QVariant& value) {
    constexpr unsigned noPreference = 0, preferDark = 1, moreContrast = 1, lessMotion = 1;
    if (space == QLatin1String(gnomeSpace)) {
        if (key == QLatin1String("enable-animations")) isAnimated_ = value.toBool();
    } else if (space == QLatin1String(plasmaSpace)) {
        // How long animations take, in parts of their usual time, and in digits.
        if (key == QLatin1String("AnimationDurationFactor")) isAnimated_ = value.toDouble() > 0;
    } else if (space != QLatin1String(appearanceSpace)) {
        return appearance;
    } else if (key == QLatin1String("color-scheme")) {
        appearance.isDark = value.toUInt() == noPreference ? fallback_.isDark : value.toUInt() == preferDark;
    } else if (key == QLatin1String("contrast")) {
        appearance.isHighContrast = value.toUInt() == moreContrast;
    } else if (key == QLatin1String("reduced-motion")) {
        prefersLessMotion_ = value.toUInt() == lessMotion;
    }
    appearance.isMotionReduced = prefersLessMotion_ || !isAnimated_;
    return appearance;
}

} // namespace ombrel
