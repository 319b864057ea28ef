#include "ui/PaneSplitter.h"

#include "ui/Theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

#include <algorithm>
#include <initializer_list>

namespace ombrel {

/// One pixel to be seen and a few more to be grabbed.
class PaneSplitter::Grip final : public QSplitterHandle {
public:
    explicit Grip(PaneSplitter& splitter)
        : QSplitterHandle(Qt::Horizontal, &splitter), splitter_(&splitter) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(contentsRect(), splitter_->theme_->color(ThemeColor::border));
    }
    void resizeEvent(QResizeEvent* event) override {
        const int beside = splitter_->theme_->size(ThemeSize::splitterGrab) / 2;
        setAttribute(Qt::WA_MouseNoMask);
        setContentsMargins(beside, 0, beside, 0);
        setMask(contentsRect());
        QWidget::resizeEvent(event);
    }
    void mousePressEvent(QMouseEvent* event) override {
        grabbedAt_ = event->position().toPoint().x() - contentsMargins().left();
        QSplitterHandle::mousePressEvent(event);
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!(event->buttons() & Qt::LeftButton)) return;
        int to = splitter_->mapFromGlobal(event->globalPosition().toPoint()).x() - grabbedAt_;
        if (isOfTree() && fromStart(to) < splitter_->theme_->size(ThemeSize::treeFoldsBelow))
            to = splitter_->isRightToLeft() ? splitter_->rect().width() : 0;
        moveSplitter(to);
    }

private:
    [[nodiscard]] bool isOfTree() const {
        const QWidget* const tree = splitter_->at(Side::tree).widget;
        return tree && splitter_->handle(splitter_->indexOf(splitter_->centre_)) == this;
    }
    [[nodiscard]] int fromStart(int x) const {
        return splitter_->isRightToLeft() ? splitter_->rect().width() - x : x;
    }

    PaneSplitter* splitter_;
    int grabbedAt_ = 0;
};

PaneSplitter::PaneSplitter(const Theme& theme, QWidget* centre, QWidget* parent)
    : QSplitter(parent), theme_(&theme), centre_(centre) {
    setChildrenCollapsible(false);
    at(Side::tree).width = theme.size(ThemeSize::tree);
    at(Side::details).width = theme.size(ThemeSize::detailsPane);
    addWidget(centre);
    connect(this, &QSplitter::splitterMoved, this, &PaneSplitter::noteWidths);
    connect(&theme, &Theme::changed, this, &PaneSplitter::takeSizes);
    takeSizes();
}

void PaneSplitter::put(Side side, QWidget* widget) {
    at(side).widget = widget;
    insertWidget(side == Side::tree ? 0 : count(), widget);
    takeSizes();
    arrange();
}

void PaneSplitter::setWanted(Side side, bool isWanted) {
    if (at(side).isWanted == isWanted) return;
    at(side).isWanted = isWanted;
    arrange();
}

bool PaneSplitter::isShown(Side side) const {
    return at(side).widget && !at(side).widget->isHidden();
}

int PaneSplitter::width(Side side) const {
    return at(side).width;
}

void PaneSplitter::setWidth(Side side, int width) {
    const int least =
        theme_->size(side == Side::tree ? ThemeSize::treeMinimum : ThemeSize::detailsPaneMinimum);
    const bool isFolded = side == Side::tree && width == 0;
    at(side).width = isFolded ? 0 : std::clamp(width, least, theme_->size(ThemeSize::sideMaximum));
    arrange();
}

QSplitterHandle* PaneSplitter::createHandle() {
    return new Grip(*this);
}

void PaneSplitter::resizeEvent(QResizeEvent* event) {
    QSplitter::resizeEvent(event);
    arrange();
}

bool PaneSplitter::hasRoom(Side side) const {
    return rect().width() >=
           theme_->size(side == Side::tree ? ThemeSize::roomForTree : ThemeSize::roomForDetails);
}

void PaneSplitter::takeSizes() {
    setHandleWidth(theme_->size(ThemeSize::hairline));
    centre_->setMinimumWidth(theme_->size(ThemeSize::fileViewMinimum));
    for (const Side side : {Side::tree, Side::details}) {
        QWidget* const widget = at(side).widget;
        if (!widget) continue;
        widget->setMinimumWidth(
            theme_->size(side == Side::tree ? ThemeSize::treeMinimum : ThemeSize::detailsPaneMinimum));
        widget->setMaximumWidth(theme_->size(ThemeSize::sideMaximum));
        setCollapsible(indexOf(widget), side == Side::tree);
    }
}

void PaneSplitter::arrange() {
    QList<int> sizes(count(), 0);
    int rest = rect().width();
    for (const Side side : {Side::tree, Side::details}) {
        const Place& place = at(side);
        if (!place.widget) continue;
        const bool isShown = place.isWanted && hasRoom(side);
        place.widget->setVisible(isShown);
        if (!isShown) continue;
        sizes[indexOf(place.widget)] = place.width;
        rest -= place.width + handleWidth();
    }
    sizes[indexOf(centre_)] = std::max(rest, 1);
    setSizes(sizes);
}

void PaneSplitter::noteWidths() {
    const QList<int> now = sizes();
    for (const Side side : {Side::tree, Side::details})
        if (isShown(side)) at(side).width = now[indexOf(at(side).widget)];
}

} // namespace ombrel
