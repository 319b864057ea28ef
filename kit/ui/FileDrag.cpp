#include "ui/FileDrag.h"

#include "services/ClipboardFormats.h"
#include "ui/DragRun.h"
#include "ui/FileView.h"
#include "ui/Formats.h"
#include "ui/Theme.h"

#include <QDrag>
#include <QDropEvent>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

FileDrag* underWay = nullptr;

std::vector<FileReference> selectedIn(const BrowserModel& pane) {
    std::vector<FileReference> references;
    for (const FileItem& item : pane.selection().items())
        references.push_back(item.reference());
    return references;
}

void paintCount(QPainter& painter, const Theme& theme, const QRect& picture, std::size_t count) {
    const QString text = Formats::number(static_cast<std::int64_t>(count));
    painter.setFont(theme.font(ThemeFont::bodyStrong));
    const int height = theme.size(ThemeSize::space20);
    const int width = std::max(height, painter.fontMetrics().horizontalAdvance(text) + height / 2);
    const QRect badge(picture.right() + 1 - width, picture.bottom() + 1 - height, width, height);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.color(ThemeColor::surface), theme.size(ThemeSize::hairline)));
    painter.setBrush(theme.color(ThemeColor::accent));
    painter.drawRoundedRect(QRectF(badge).adjusted(0.5, 0.5, -0.5, -0.5), height / 2.0, height / 2.0);
    painter.setPen(theme.color(ThemeColor::onAccent));
    painter.drawText(badge, Qt::AlignCenter, text);
}

/// The first items on a heap, and how many there are in all.
QPixmap pictureOf(FileView& view) {
    constexpr std::size_t mostIcons = 3;
    const Theme& theme = view.theme();
    const auto& selection = view.model().selection();
    // From what is on the screen as far as there is enough, so that a long list is not gone through.
    std::vector<std::size_t> rows;
    const RowRange visible = view.visibleRows();
    for (std::size_t row = visible.begin; row < visible.end && rows.size() < mostIcons; ++row)
        if (selection.contains(row)) rows.push_back(row);
    if (rows.empty()) rows.push_back(selection.firstRow().value_or(0));
    const int side = theme.size(ThemeSize::mediumImageHeight), shift = theme.size(ThemeSize::space6);
    const int extent = side + static_cast<int>(rows.size() - 1) * shift + shift;
    const double ratio = view.devicePixelRatioF();
    QPixmap picture((QSizeF(extent, extent) * ratio).toSize());
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    for (std::size_t i = rows.size(); i-- > 0;) {
        const auto& facts = view.facts(rows[i]);
        const int at = static_cast<int>(i) * shift;
        view.icons().draw(painter, facts.fileClass, facts.badge, QRect(at, at, side, side));
    }
    if (selection.count() > 1) paintCount(painter, theme, QRect(0, 0, extent, extent), selection.count());
    return picture;
}

} // namespace

void FileDrag::run(FileView& view, Qt::MouseButton button) {
    if (view.model().selection().empty()) return;
    auto* const data = new FileDrag(selectedIn(view.model()), button == Qt::RightButton);
    auto* const drag = new QDrag(&view);
    drag->setMimeData(data);
    const QPixmap picture = pictureOf(view);
    drag->setPixmap(picture);
    const QSize size = picture.deviceIndependentSize().toSize();
    drag->setHotSpot(QPoint(size.width() / 2, size.height() - 1));
    const auto springs = data->springs_;
    underWay = data;
    const Qt::DropAction done =
        DragRun::toTheEnd(*drag, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
    underWay = nullptr;
    if (done != Qt::IgnoreAction) return;
    for (const Spring& spring : *springs)
        if (spring.about) spring.back();
}

FileDrag* FileDrag::of(const QDropEvent& event) {
    return event.source() ? underWay : nullptr;
}

void FileDrag::noteSpring(QObject& about, std::function<void()> back) {
    const auto isAboutIt = [&](const Spring& spring) { return spring.about == &about; };
    if (std::ranges::none_of(*springs_, isAboutIt)) springs_->push_back({&about, std::move(back)});
}

QStringList FileDrag::formats() const {
    return {QStringLiteral("text/uri-list"), QStringLiteral("x-special/gnome-copied-files"),
            QStringLiteral("text/plain;charset=utf-8"), QStringLiteral("text/plain")};
}

QVariant FileDrag::retrieveData(const QString& format, QMetaType) const {
    if (!formats().contains(format)) return {};
    if (const auto made = made_.constFind(format); made != made_.cend()) return *made;
    if (entries_.empty()) {
        std::vector<FileURL> urls;
        for (const FileReference& item : items_->items())
            urls.push_back(item.url);
        entries_ = ClipboardFormats::filesOf(urls, ClipboardFormats::Marking::copied, {});
    }
    const auto entry = std::ranges::find(entries_, format.toStdString(), &Pasteboard::Entry::format);
    if (entry == entries_.end()) return {};
    return *made_.insert(format, QByteArray::fromStdString(entry->bytes()));
}

} // namespace ombrel
