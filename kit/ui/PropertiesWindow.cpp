#include "ui/PropertiesWindow.h"

#include "base/FileName.h"
#include "services/AppServices.h"
#include "ui/CapacityBar.h"
#include "ui/FactRows.h"
#include "ui/FileIconDrawing.h"
#include "ui/FileIcons.h"
#include "ui/FocusRing.h"
#include "ui/HomeTexts.h"
#include "ui/LocalizedText.h"
#include "ui/PlaceIcons.h"
#include "ui/TextLabel.h"
#include "ui/ValueText.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>

#include <algorithm>
#include <initializer_list>
#include <span>
#include <utility>

namespace ombrel {
namespace {

VolumePlace placeOf(const VolumeInfo& volume) {
    return Places::volumes(std::span(&volume, 1)).front();
}

FileClass classOf(const FileItem& item) {
    if (item.isPackage()) return FileClass::folder;
    return FileClasses::known(item).value_or(FileClass::other);
}

/// What the window is about before anything was read.
QString nameOf(const ItemProperties::Subject& subject) {
    if (const auto* url = std::get_if<FileURL>(&subject)) return FactRows::nameOf(*url);
    if (const auto* volume = std::get_if<VolumeInfo>(&subject)) return placeOf(*volume).title;
    const auto& selection = std::get<FileSelection>(subject);
    if (selection.count() != 1)
        return localized("ui.status.items", static_cast<std::int64_t>(selection.count()));
    QString name;
    selection.set().forEach([&](ItemRef ref) {
        name = QString::fromStdString(FileName::displayText(selection.list().view(ref).name()));
    });
    return name;
}

} // namespace

/// The item, the first ones of several one behind the other, or the drive; nothing until it is known.
class PropertiesWindow::Icon final : public QWidget {
public:
    Icon(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme), icons_(theme) {
        const int side = theme.size(ThemeSize::dialogIcon);
        setFixedSize(side, side);
    }
    void show(const std::vector<FileItem>& items) {
        items_ = items;
        update();
    }
    void show(VolumePlace::Kind kind) {
        volume_ = kind;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (volume_) return paintVolume(painter);
        if (items_.empty()) return;
        // Each one behind stands out a little at the top.
        const int step = theme_->size(ThemeSize::space4), behind = static_cast<int>(items_.size()) - 1;
        const int side = width() - behind * step;
        for (int i = behind; i >= 0; --i) {
            const QRectF box(i * step, (behind - i) * step, side, side);
            const FileItem& item = items_[static_cast<std::size_t>(i)];
            FileIconDrawing::draw(painter, *theme_, classOf(item), box);
            icons_.drawBadge(painter, FileIcons::badgeOf(item), box);
            painter.setRenderHint(QPainter::Antialiasing);
        }
    }

private:
    void paintVolume(QPainter& painter) const {
        const int radius = theme_->size(ThemeSize::radiusField);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(ThemeColor::pressed));
        painter.drawRoundedRect(rect(), radius, radius);
        const int side = theme_->size(ThemeSize::listIcon);
        QRect box(0, 0, side, side);
        box.moveCenter(rect().center());
        Glyphs::draw(painter, PlaceIcons::glyphOf(*volume_), box, theme_->color(ThemeColor::accent));
    }

    const Theme* theme_;
    FileIcons icons_;
    std::vector<FileItem> items_;
    std::optional<VolumePlace::Kind> volume_;
};

PropertiesWindow::PropertiesWindow(const Theme& theme, ItemProperties::Subject subject)
    : theme_(&theme), properties_(std::move(subject)), icon_(new Icon(theme, this)),
      name_(new ValueText(theme, ThemeFont::subtitle, this)),
      problem_(new TextLabel(theme, ThemeFont::body, ThemeColor::danger, this)),
      facts_(new FactTable(theme, ThemeSize::propertiesCaptions, this)),
      capacity_(new CapacityBar(theme, this)),
      capacityWords_(new TextLabel(theme, ThemeFont::caption, ThemeColor::textSecondary, this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    const QString name = nameOf(properties_.subject());
    const auto* const selection = std::get_if<FileSelection>(&properties_.subject());
    const auto count = selection ? static_cast<std::int64_t>(selection->count()) : 1;
    setWindowTitle(count > 1 ? localized("ui.properties.titleOfSeveral", count)
                             : localized("ui.properties.title", {isolated(name.toStdString())}));
    name_->setValue(localized("ui.properties.name"), name);
    resize(theme.size(ThemeSize::propertiesWidth), theme.size(ThemeSize::propertiesHeight));
    layOut();
    new FocusRing(this);
    connect(&properties_, &ItemProperties::changed, this, &PropertiesWindow::refresh);
    refresh();
}

void PropertiesWindow::layOut() {
    const int margin = theme_->size(ThemeSize::space20);
    auto* const content = new QWidget;
    auto* const rows = new QVBoxLayout(content);
    rows->setContentsMargins(margin, theme_->size(ThemeSize::space16), margin,
                             theme_->size(ThemeSize::space16));
    rows->setSpacing(theme_->size(ThemeSize::space6));
    for (QWidget* each : std::initializer_list<QWidget*>{problem_, facts_, capacity_, capacityWords_})
        rows->addWidget(each);
    problem_->setWordWrap(true);
    rows->addStretch(1);
    auto* const scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    scroll->viewport()->setAutoFillBackground(false);
    const auto takeGround = [theme = theme_, content] {
        QPalette ground = theme->palette();
        ground.setColor(QPalette::Window, theme->color(ThemeColor::surface));
        content->setPalette(ground);
    };
    connect(theme_, &Theme::changed, content, takeGround);
    takeGround();

    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    auto* const head = new QHBoxLayout;
    head->setContentsMargins(margin, margin, margin, theme_->size(ThemeSize::space16));
    head->setSpacing(theme_->size(ThemeSize::space12));
    head->addWidget(icon_, 0, Qt::AlignTop);
    head->addWidget(name_, 1, Qt::AlignVCenter);
    column->addLayout(head);
    column->addWidget(scroll, 1);
    auto* const close = new QPushButton(localized("ui.report.close"), this);
    close->setAutoDefault(true);
    auto* const foot = new QHBoxLayout;
    foot->setContentsMargins(margin, theme_->size(ThemeSize::space12), margin,
                             theme_->size(ThemeSize::space16));
    foot->addStretch();
    foot->addWidget(close);
    column->addLayout(foot);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    close->setFocus(Qt::OtherFocusReason);
}

PropertiesWindow& PropertiesWindow::open(const Theme& theme, const ItemProperties::Subject& subject) {
    PropertiesWindow* window = nullptr;
    const auto all = QApplication::topLevelWidgets();
    for (QWidget* widget : all) {
        auto* const found = qobject_cast<PropertiesWindow*>(widget);
        if (found && found->isVisible() && ItemProperties::areSame(found->properties_.subject(), subject))
            window = found;
    }
    if (!window) window = new PropertiesWindow(theme, subject);
    window->setWindowState(window->windowState().setFlag(Qt::WindowMinimized, false));
    window->show();
    window->raise();
    window->activateWindow();
    return *window;
}

ItemProperties::Subject PropertiesWindow::subjectAt(const FileURL& place, const AppServices& services) {
    const auto& volumes = services.volumes().volumes();
    const auto volume =
        std::ranges::find_if(volumes, [&](const VolumeInfo& each) { return each.url == place; });
    if (volume != volumes.end()) return *volume;
    return place;
}

void PropertiesWindow::refresh() {
    const auto& problem = properties_.facts().problem;
    problem_->setVisible(problem.has_value());
    if (problem) problem_->setText(FactRows::problem(*problem));
    const bool isVolume = properties_.volume() != nullptr;
    capacity_->setVisible(isVolume);
    capacityWords_->setVisible(isVolume);
    if (isVolume) return refreshVolume();
    icon_->show(properties_.previews());
    facts_->setFacts(FactRows::inFull(properties_));
}

void PropertiesWindow::refreshVolume() {
    const VolumePlace volume = placeOf(*properties_.volume());
    icon_->show(volume.kind);
    facts_->setFacts(FactRows::inFull(volume));
    const auto used = volume.used();
    const QString words = HomeTexts::capacity(volume);
    capacity_->setVisible(used.has_value());
    capacity_->setLevel({.used = used.value_or(0), .isNearlyFull = volume.isNearlyFull()}, words);
    capacityWords_->setVisible(used.has_value());
    capacityWords_->setText(words);
    capacityWords_->setLook(ThemeFont::caption,
                            volume.isNearlyFull() ? ThemeColor::danger : ThemeColor::textSecondary);
}

void PropertiesWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace ombrel
