#pragma once

#include <QAbstractButton>
#include <QTimer>

#include <functional>

namespace ombrel {

class OperationCenter;
class Theme;

/// How many jobs run and how far they are, in a few words; that one waits for an answer goes before. Not to
/// be seen while none has run for a moment. A click asks for the window that shows the jobs.
class JobChip final : public QAbstractButton {
    Q_OBJECT

public:
    /// `center` and `theme` must outlive it.
    JobChip(OperationCenter& center, const Theme& theme, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void followJobs();
    void refresh();
    [[nodiscard]] bool isAsked() const;

    OperationCenter* center_;
    const Theme* theme_;
    QObject* following_ = nullptr; ///< goes when jobs come and go
    QTimer appearing_;
    QTimer refreshing_;
    int announcedPercent_ = 0;
};

} // namespace ombrel
