#include "ui/ReportCard.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "operations/ReportTexts.h"
#include "ui/LocalizedText.h"
#include "ui/ReportTable.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include <memory>
#include <system_error>

namespace ombrel {
namespace {

/// Long reports need a while to be put into words.
void copyAsText(const std::shared_ptr<const OperationReport>& report) {
    constexpr std::size_t manyItems = 2000;
    const auto copy = [](const QString& text) { QGuiApplication::clipboard()->setText(text); };
    if (report->items.size() > manyItems) {
        try {
            return Worker("ombrel-report",
                          [report, copy](const std::stop_token&) {
                              MainThread::post([text = ReportTable::asText(*report), copy] { copy(text); });
                          })
                .detach();
        } catch (const std::system_error&) {
            // Without a thread it is done here.
        }
    }
    copy(ReportTable::asText(*report));
}

} // namespace

ReportCard::ReportCard(const Theme& theme, const LeftReport& report, QWidget* parent)
    : QWidget(parent), id_(report.id), summary_(localized(summaryOf(*report.report))),
      close_(new QPushButton(localized("ui.report.close"), this)) {
    auto* const column = new QVBoxLayout(this);
    const int side = theme.size(ThemeSize::space20), above = theme.size(ThemeSize::space16);
    column->setContentsMargins(side, above, side, above);
    column->setSpacing(theme.size(ThemeSize::space8));
    auto* const summary = new TextLabel(theme, ThemeFont::title, ThemeColor::text, this);
    summary->setText(summary_);
    summary->setWordWrap(true);
    if (!report.title.key.empty()) {
        auto* const heading = new TextLabel(theme, ThemeFont::body, ThemeColor::textSecondary, this);
        heading->setText(localized(report.title));
        heading->setWordWrap(true);
        column->addWidget(heading);
    }
    column->addWidget(summary);
    column->addWidget(new ReportTable(theme, *report.report, this));

    auto* const copy = new QPushButton(localized("ui.report.copy"), this);
    copy->setAutoDefault(true);
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space8));
    row->addStretch();
    row->addWidget(copy);
    row->addWidget(close_);
    column->addLayout(row);
    close_->setDefault(true);
    close_->setAutoDefault(true);
    connect(copy, &QPushButton::clicked, this, [report = report.report] { copyAsText(report); });
    connect(close_, &QPushButton::clicked, this, &ReportCard::closeRequested);
}

void ReportCard::focusClose() {
    close_->setFocus(Qt::OtherFocusReason);
}

} // namespace ombrel
