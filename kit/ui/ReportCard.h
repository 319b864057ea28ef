#pragma once

#include "services/OperationPresenting.h"

#include <QUuid>
#include <QWidget>

class QPushButton;

namespace ombrel {

class Theme;

/// What a job that did not wholly succeed has left to read, until it is closed.
class ReportCard final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it. A report without a title has no heading.
    ReportCard(const Theme& theme, const LeftReport& report, QWidget* parent = nullptr);

    [[nodiscard]] const QUuid& id() const noexcept { return id_; }
    [[nodiscard]] const QString& summary() const noexcept { return summary_; }
    void focusClose();

Q_SIGNALS:
    void closeRequested();

private:
    const QUuid id_;
    const QString summary_;
    QPushButton* close_;
};

} // namespace ombrel
