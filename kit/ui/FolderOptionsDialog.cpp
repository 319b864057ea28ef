#include "ui/FolderOptionsDialog.h"

#include "ui/ConfirmationDialog.h"
#include "ui/FocusRing.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"
#include "ui/WindowPrompter.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace ombrel {

using Options = AppSettings::FolderOptions;

FolderOptionsDialog::FolderOptionsDialog(const Theme& theme, AppSettings& settings, QWidget* parent)
    : QDialog(parent), theme_(&theme), settings_(&settings) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(localized("ui.folderOptions.title"));
    new FocusRing(this);
    auto* const column = new QVBoxLayout(this);
    const int side = theme.size(ThemeSize::space20);
    column->setContentsMargins(side, side, side, theme.size(ThemeSize::space16));
    column->setSpacing(theme.size(ThemeSize::space8));
    setMinimumWidth(theme.size(ThemeSize::folderOptionsWidth));
    addGroup(localized("ui.folderOptions.hidden"), *column);
    addOption(localized("ui.folderOptions.showHidden"), &Options::showHiddenFiles, *column);
    hideProtected_ =
        addOption(localized("ui.folderOptions.hideProtected"), &Options::hideProtectedSystemFiles, *column);
    addOption(localized("ui.folderOptions.hideExtensions"), &Options::hideKnownExtensions, *column);
    column->addSpacing(theme.size(ThemeSize::space12));
    addGroup(localized("ui.folderOptions.window"), *column);
    addOption(localized("ui.folderOptions.checkBoxes"), &Options::showItemCheckBoxes, *column);
    addOption(localized("ui.folderOptions.statusBar"), &Options::showStatusBar, *column);
    addOption(localized("ui.folderOptions.fullPath"), &Options::showFullPathInTitle, *column);
    column->addSpacing(theme.size(ThemeSize::space12));
    column->addStretch();

    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space8));
    column->addLayout(row);
    auto* const restore = new QPushButton(localized("ui.folderOptions.restore"), this);
    auto* const cancel = new QPushButton(localized("confirm.cancel"), this);
    auto* const accept = new QPushButton(localized("ui.folderOptions.accept"), this);
    row->addWidget(restore);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(accept);
    accept->setDefault(true);
    connect(restore, &QPushButton::clicked, this, [this] { show(Options()); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(accept, &QPushButton::clicked, this, [this] {
        settings_->setFolderOptions(options());
        QDialog::accept();
    });
    show(settings.folderOptions());
    connect(hideProtected_, &QCheckBox::clicked, this, [this](bool isOn) {
        if (!isOn) askAboutProtected();
    });
    boxes_.front().second->setFocus(Qt::OtherFocusReason);
}

void FolderOptionsDialog::addGroup(const QString& title, QVBoxLayout& column) {
    auto* const label = new TextLabel(*theme_, ThemeFont::bodyStrong, ThemeColor::text, this);
    label->setText(title);
    column.addWidget(label);
}

QCheckBox* FolderOptionsDialog::addOption(const QString& label, Option option, QVBoxLayout& column) {
    auto* const box = new QCheckBox(label, this);
    column.addWidget(box);
    boxes_.emplace_back(option, box);
    return box;
}

Options FolderOptionsDialog::options() const {
    Options options;
    for (const auto& [option, box] : boxes_)
        options.*option = box->isChecked();
    return options;
}

void FolderOptionsDialog::show(const Options& options) {
    for (const auto& [option, box] : boxes_)
        box->setChecked(options.*option);
}

void FolderOptionsDialog::askAboutProtected() {
    if (hasAsked_) return;
    const auto content =
        WindowPrompter::contentOf({.kind = BrowserQuestion::Kind::showProtected, .items = {}, .count = 0});
    const auto done = [this](const BrowserAnswer& answer) {
        const bool shows = answer.choice == BrowserAnswer::Choice::accept;
        hasAsked_ = shows;
        hideProtected_->setChecked(!shows);
    };
    (new ConfirmationDialog(*theme_, content, done, this))->open();
}

} // namespace ombrel
