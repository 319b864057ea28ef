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
constexpr int portalPatience = 3000; // milliseconds

QString string(const char* text) {
    return QString::fromLatin1(text);
}

/// One setting of the space org.freedesktop.appearance.
Appearance with(Appearance appearance, const Appearance& fallback, const QString& key,
                const QVariant& value) {
    constexpr unsigned noPreference = 0, preferDark = 1, moreContrast = 1, lessMotion = 1;
    if (key == QLatin1String("color-scheme"))
        appearance.isDark = value.toUInt() == noPreference ? fallback.isDark : value.toUInt() == preferDark;
    else if (key == QLatin1String("contrast"))
        appearance.isHighContrast = value.toUInt() == moreContrast;
    else if (key == QLatin1String("reduced-motion"))
        appearance.isMotionReduced = value.toUInt() == lessMotion;
    return appearance;
}

using Settings = QMap<QString, QVariantMap>;

/// All settings of the space, none when no portal answers; nothing when there is no bus. Blocking.
std::optional<QVariantMap> askPortal() {
    // Without an address the bus library would try to launch a bus.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return std::nullopt;
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return std::nullopt;
    auto call = QDBusMessage::createMethodCall(string(service), string(path), string(interface),
                                               QStringLiteral("ReadAll"));
    call << QStringList{string(appearanceSpace)};
    const auto reply = bus.call(call, QDBus::Block, portalPatience);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return QVariantMap();
    const auto settings = qdbus_cast<Settings>(reply.arguments().constFirst());
    return settings.value(string(appearanceSpace));
}

} // namespace

Appearance DesktopAppearance::fromPalette(const QPalette& palette) {
    constexpr int middle = 128;
    return {.isDark = palette.color(QPalette::Window).lightness() < middle};
}

DesktopAppearance::DesktopAppearance(Theme& theme, QObject* parent)
    : QObject(parent), theme_(&theme), fallback_(theme.appearance()) {}

void DesktopAppearance::follow() {
    try {
        Worker("ombrel-portal", [self = QPointer(this)](const std::stop_token&) {
            auto settings = askPortal();
            MainThread::post([self, settings = std::move(settings)] {
                if (!self || !settings) return;
                Appearance appearance = self->theme_->appearance();
                for (auto setting = settings->begin(); setting != settings->end(); ++setting)
                    appearance = with(appearance, self->fallback_, setting.key(), setting.value());
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
    if (space == QLatin1String(appearanceSpace))
        theme_->setAppearance(with(theme_->appearance(), fallback_, key, value.variant()));
}

} // namespace ombrel
