#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace ombrel {

class Theme;

/// How far a job is, as a bar. Screen readers are told at most at every quarter.
class JobBar final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit JobBar(const Theme& theme, QWidget* parent = nullptr);

    /// 0 to 1.
    [[nodiscard]] double share() const noexcept { return share_; }
    void setShare(double share);
    /// The fill of a job that rests is grey.
    void setResting(bool isResting);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    double share_ = 0;
    double shown_ = 0;
    bool isResting_ = false;
    QVariantAnimation motion_;
};

} // namespace ombrel
