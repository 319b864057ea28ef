#pragma once

#include "ui/Theme.h"

#include <QObject>
#include <QString>

class QDBusVariant;
class QPalette;

namespace ombrel {

/// Keeps a theme as the desktop wants it: light or dark, high contrast and reduced motion as the settings
/// portal says (org.freedesktop.portal.Settings; GNOME's and Plasma's settings for animations count too), now
/// and whenever they change. Without a portal the application's own palette decides, which is all that there
/// is at first: the portal is asked on a worker and never waited for.
class DesktopAppearance final : public QObject {
    Q_OBJECT

public:
    /// What a palette says: dark when its window colour is.
    [[nodiscard]] static Appearance fromPalette(const QPalette& palette);

    /// `theme` must outlive it.
    explicit DesktopAppearance(Theme& theme, QObject* parent = nullptr);

    /// Starts to follow the portal.
    void follow();

private Q_SLOTS:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    [[nodiscard]] Appearance with(Appearance appearance, const QString& space, const QString& key,
                                  const QVariant& value);

    Theme* theme_;
    const Appearance fallback_; ///< where the portal has no preference
    bool prefersLessMotion_ = false;
    bool isAnimated_ = true;
};

} // namespace ombrel
