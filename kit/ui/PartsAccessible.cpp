#include "ui/PartsAccessible.h"

#include "ui/CapacityBar.h"
#include "ui/JobBar.h"
#include "ui/Pill.h"
#include "ui/QuickLookPicture.h"
#include "ui/SpeedGraph.h"
#include "ui/TextLabel.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLocale>

#include <functional>
#include <utility>

namespace ombrel {
namespace {

constexpr int wholePercent = 100;

class BarAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    using Share = std::function<double()>;
    /// `share` is asked as long as the bar lives.
    BarAccessible(QWidget& bar, Share share)
        : QAccessibleWidget(&bar, QAccessible::ProgressBar), share_(std::move(share)) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Value) return QAccessibleWidget::text(kind);
        return QLocale().toString(percent()) + QLocale().percent();
    }
    [[nodiscard]] QVariant currentValue() const override { return percent(); }
    void setCurrentValue(const QVariant&) override {}
    [[nodiscard]] QVariant maximumValue() const override { return wholePercent; }
    [[nodiscard]] QVariant minimumValue() const override { return 0; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1; }

private:
    [[nodiscard]] int percent() const { return static_cast<int>(share_() * wholePercent); }

    const Share share_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
    if (auto* const bar = qobject_cast<JobBar*>(object))
        return new BarAccessible(*bar, [bar] { return bar->share(); });
    if (auto* const bar = qobject_cast<CapacityBar*>(object))
        return new BarAccessible(*bar, [bar] { return bar->used(); });
    if (auto* const graph = qobject_cast<SpeedGraph*>(object))
        return new QAccessibleWidget(graph, QAccessible::Graphic);
    if (auto* const picture = qobject_cast<QuickLookPicture*>(object))
        return new QAccessibleWidget(picture, QAccessible::Graphic);
    if (auto* const pill = qobject_cast<Pill*>(object))
        return new QAccessibleWidget(pill, QAccessible::StaticText);
    if (auto* const label = qobject_cast<ElidedLabel*>(object))
        return new QAccessibleWidget(label, QAccessible::StaticText);
    return nullptr;
}

} // namespace

void PartsAccessible::install() {
    static const bool isDone = [] {
        QAccessible::installFactory(make);
        return true;
    }();
    static_cast<void>(isDone);
}

void PartsAccessible::tellShare(JobBar& bar) {
    if (!QAccessible::isActive() || !bar.isVisible()) return;
    QAccessibleValueChangeEvent event(&bar, static_cast<int>(bar.share() * wholePercent));
    QAccessible::updateAccessibility(&event);
}

} // namespace ombrel
