#include "ui/ApplicationChooser.h"

#include "ui/ApplicationList.h"
#include "ui/FocusRing.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <cstdint>
#include <utility>

namespace ombrel {
namespace {

QString titleFor(const std::vector<FileURL>& items) {
    if (items.size() == 1) return localized("ui.chooser.one", {isolated(items.front().name())});
    return localized("ui.chooser.many", static_cast<std::int64_t>(items.size()));
}

} // namespace

ApplicationChooser::ApplicationChooser(const Theme& theme, const std::vector<FileURL>& items, Done done,
                                       QWidget* parent)
    : QDialog(parent), theme_(&theme), done_(std::move(done)), filter_(new QLineEdit(this)),
      pages_(new QStackedWidget(this)), list_(new ApplicationList(theme)),
      note_(new TextLabel(theme, ThemeFont::body, ThemeColor::textSecondary)),
      always_(new QCheckBox(localized("ui.chooser.always"), this)),
      open_(new QPushButton(localized("ui.command.open"), this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    new FocusRing(this);
    layOut(titleFor(items));
    filter_->setFocus(Qt::OtherFocusReason);
    refresh();
}

void ApplicationChooser::layOut(const QString& title) {
    setWindowTitle(title);
    setAccessibleName(title);
    setMinimumWidth(theme_->size(ThemeSize::dialogWidth));
    auto* const column = new QVBoxLayout(this);
    const int side = theme_->size(ThemeSize::space20);
    column->setContentsMargins(side, side, side, theme_->size(ThemeSize::space16));
    column->setSpacing(theme_->size(ThemeSize::space12));
    auto* const heading = new TextLabel(*theme_, ThemeFont::subtitle, ThemeColor::text, this);
    heading->setWordWrap(true);
    heading->setText(title);
    column->addWidget(heading);

    const QString filterName = localized("ui.chooser.filter");
    filter_->setPlaceholderText(filterName);
    filter_->setAccessibleName(filterName);
    filter_->setMinimumHeight(theme_->size(ThemeSize::button));
    const int beside = theme_->size(ThemeSize::space6);
    filter_->setTextMargins(beside, 0, beside, 0);
    filter_->installEventFilter(this);
    connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
        list_->filter(text.trimmed());
        refresh();
    });
    column->addWidget(filter_);

    note_->setAlignment(Qt::AlignCenter);
    note_->setWordWrap(true);
    pages_->addWidget(note_);
    pages_->addWidget(list_);
    pages_->setMinimumHeight(theme_->size(ThemeSize::applicationList));
    connect(list_, &ApplicationList::chosenChanged, this, &ApplicationChooser::refresh);
    connect(list_, &QAbstractItemView::doubleClicked, this, &ApplicationChooser::openChosen);
    column->addWidget(pages_, 1);
    column->addWidget(always_);

    auto* const row = new QHBoxLayout;
    row->setSpacing(theme_->size(ThemeSize::space8));
    row->addStretch();
    auto* const cancel = new QPushButton(localized("confirm.cancel"), this);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    open_->setDefault(true);
    connect(open_, &QPushButton::clicked, this, &ApplicationChooser::openChosen);
    row->addWidget(cancel);
    row->addWidget(open_);
    column->addLayout(row);
}

void ApplicationChooser::offer(const ApplicationChoice& choice, const std::vector<DesktopApplication>& all) {
    types_ = choice.types;
    list_->setApplications(choice.applications, all);
    list_->filter(filter_->text().trimmed());
    refresh();
}

QString ApplicationChooser::note() const {
    return pages_->currentWidget() == note_ ? note_->text() : QString();
}

void ApplicationChooser::refresh() {
    const QString text = filter_->text().trimmed();
    const bool isEmpty = list_->shownCount() == 0;
    if (!types_)
        note_->setText(localized("ui.chooser.looking"));
    else if (text.isEmpty())
        note_->setText(localized("ui.chooser.none"));
    else
        note_->setText(localized("ui.chooser.noMatch", {isolated(text.toStdString())}));
    if (isEmpty && list_->hasFocus()) filter_->setFocus(Qt::OtherFocusReason);
    pages_->setCurrentWidget(isEmpty ? static_cast<QWidget*>(note_) : list_);
    const DesktopApplication* const chosen = list_->chosen();
    open_->setEnabled(chosen);
    // The desktop remembers applications by their identifiers.
    always_->setEnabled(types_ && !types_->empty() && (!chosen || !chosen->id.empty()));
}

void ApplicationChooser::openChosen() {
    const DesktopApplication* const chosen = list_->chosen();
    if (!chosen) return;
    const DesktopApplication application = *chosen;
    const bool isForAlways = always_->isEnabled() && always_->isChecked();
    const auto types = isForAlways ? *types_ : std::vector<std::string>();
    const Done done = done_;
    accept();
    done(application, types);
}

/// From the field the arrows lead into the list.
bool ApplicationChooser::eventFilter(QObject* watched, QEvent* event) {
    if (watched != filter_ || event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if ((key != Qt::Key_Down && key != Qt::Key_Up) || list_->shownCount() == 0) return false;
    list_->chooseFirst();
    list_->setFocus(Qt::OtherFocusReason);
    return true;
}

} // namespace ombrel
