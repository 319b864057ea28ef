#include "ui/ReportDialog.h"

#include "ui/FocusRing.h"
#include "ui/ReportCard.h"
#include "ui/Theme.h"

#include <QVBoxLayout>

#include <memory>

namespace ombrel {

ReportDialog::ReportDialog(const Theme& theme, const OperationReport& report, QWidget* parent)
    : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    new FocusRing(this);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    auto* const card = new ReportCard(
        theme, {.id = {}, .title = {}, .report = std::make_shared<const OperationReport>(report)}, this);
    column->addWidget(card);
    setMinimumWidth(theme.size(ThemeSize::progressWidth));
    setWindowTitle(card->summary());
    connect(card, &ReportCard::closeRequested, this, &QDialog::accept);
    card->focusClose();
}

} // namespace ombrel
