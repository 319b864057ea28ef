#include "ui/ConfirmationDialog.h"

#include "base/FileName.h"
#include "ui/FileIconDrawing.h"
#include "ui/FocusRing.h"
#include "ui/ItemGlance.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace ombrel {
namespace {

/// The icon of the item that is asked about; nothing until it is known, so that none changes into another.
class Icon final : public QWidget {
public:
    Icon(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
        const int side = theme.size(ThemeSize::dialogIcon);
        setFixedSize(side, side);
    }
    void show(FileClass fileClass) {
        fileClass_ = fileClass;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (!fileClass_) return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        FileIconDrawing::draw(painter, *theme_, *fileClass_, rect());
    }

private:
    const Theme* theme_;
    std::optional<FileClass> fileClass_;
};

} // namespace

ConfirmationDialog::ConfirmationDialog(const Theme& theme, const Content& content, Done done, QWidget* parent)
    : QDialog(parent), theme_(&theme) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    new FocusRing(this);
    auto* const column = new QVBoxLayout(this);
    const int side = theme.size(ThemeSize::space20);
    column->setContentsMargins(side, side, side, theme.size(ThemeSize::space16));
    column->setSpacing(theme.size(ThemeSize::space8));
    setMinimumWidth(theme.size(ThemeSize::dialogWidth));
    setMaximumWidth(theme.size(ThemeSize::dialogMaximumWidth));
    const auto add = [&](const QString& words, ThemeFont font, ThemeColor color) {
        auto* const label = new TextLabel(theme, font, color, this);
        label->setWordWrap(true);
        label->setText(words);
        column->addWidget(label);
    };
    add(content.title, ThemeFont::subtitle, ThemeColor::text);
    if (content.item) {
        auto* const row = new QHBoxLayout;
        layOutItem(*content.item, *row);
        column->addLayout(row);
    }
    if (!content.message.isEmpty()) add(content.message, ThemeFont::body, ThemeColor::textSecondary);
    if (!content.checkBox.isEmpty()) {
        checkBox_ = new QCheckBox(content.checkBox, this);
        column->addWidget(checkBox_);
    }
    column->addSpacing(theme.size(ThemeSize::space8));
    column->addStretch();
    layOutButtons(content, *column);
    setAccessibleName(content.title);
    setAccessibleDescription(content.message);
    setWindowTitle(content.title);
    connect(this, &QDialog::finished, this, [this, done = std::move(done)] {
        if (checkBox_) answer_.dontAskAgain = checkBox_->isChecked();
        if (done) done(answer_);
    });
}

void ConfirmationDialog::layOutItem(const FileURL& item, QHBoxLayout& row) {
    row.setSpacing(theme_->size(ThemeSize::space12));
    auto* const icon = new Icon(*theme_, this);
    auto* const words = new QVBoxLayout;
    words->setSpacing(theme_->size(ThemeSize::space2));
    auto* const name = new ElidedLabel(*theme_, Qt::ElideMiddle, ThemeColor::text, this);
    name->setText(QString::fromStdString(FileName::displayText(item.title())));
    auto* const type = new TextLabel(*theme_, ThemeFont::caption, ThemeColor::textSecondary, this);
    auto* const facts = new TextLabel(*theme_, ThemeFont::caption, ThemeColor::textSecondary, this);
    // They keep their room while the item is looked at.
    for (TextLabel* label : {type, facts}) {
        label->setText(QStringLiteral(" "));
        label->setMinimumHeight(label->sizeHint().height());
    }
    words->addWidget(name);
    words->addWidget(type);
    words->addWidget(facts);
    row.addWidget(icon, 0, Qt::AlignTop);
    row.addLayout(words, 1);
    ItemGlance::take(item, this, [icon, type, facts](const ItemGlance& glance) {
        icon->show(glance.fileClass);
        type->setText(glance.type);
        QStringList parts{glance.size, glance.date};
        parts.removeAll(QString());
        facts->setText(parts.join(QStringLiteral(", ")));
    });
}

void ConfirmationDialog::layOutButtons(const Content& content, QVBoxLayout& column) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme_->size(ThemeSize::space8));
    row->addStretch();
    column.addLayout(row);
    auto* const decline = addButton(content.decline, BrowserAnswer::Choice::decline, *row);
    if (!content.alternative.isEmpty())
        addButton(content.alternative, BrowserAnswer::Choice::alternative, *row);
    QPushButton* accept = nullptr;
    if (!content.accept.isEmpty()) accept = addButton(content.accept, BrowserAnswer::Choice::accept, *row);
    if (accept && content.isDanger) accept->setProperty("isDanger", true);
    QPushButton* const safe = accept && content.isAcceptSafe ? accept : decline;
    safe->setDefault(true);
    safe->setFocus(Qt::OtherFocusReason);
}

QPushButton* ConfirmationDialog::addButton(const QString& label, BrowserAnswer::Choice choice,
                                           QHBoxLayout& row) {
    auto* const button = new QPushButton(label, this);
    connect(button, &QPushButton::clicked, this, [this, choice] {
        answer_.choice = choice;
        done(choice == BrowserAnswer::Choice::decline ? Rejected : Accepted);
    });
    row.addWidget(button);
    return button;
}

} // namespace ombrel
