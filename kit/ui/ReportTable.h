#pragma once

#include "operations/OperationReport.h"

#include <QTableView>

namespace ombrel {

class Theme;

/// What became of the items that were not simply done: name, result and reason, up to 200 of them.
class ReportTable final : public QTableView {
    Q_OBJECT

public:
    static constexpr int mostRows = 200;

    /// `theme` must outlive it.
    ReportTable(const Theme& theme, const OperationReport& report, QWidget* parent = nullptr);

    /// The whole report for the clipboard: what it came to, then a line for each of these items, all of them.
    [[nodiscard]] static QString asText(const OperationReport& report);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    const Theme* theme_;
    bool hasNames_; ///< or nothing but items that were never made
};

} // namespace ombrel
