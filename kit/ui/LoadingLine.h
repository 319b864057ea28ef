#pragma once

#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

namespace ombrel {

class BrowserModel;
class Theme;

/// The thin line above a file view that shows that a listing goes on: it comes after a quarter of a second
/// and grows with each state of the listing to k/(k+1) of the width, because nobody knows the total.
class LoadingLine final : public QWidget {
    Q_OBJECT

public:
    /// `model` and `theme` must outlive it.
    LoadingLine(const BrowserModel& model, const Theme& theme, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void begin();
    void grow();
    void follow();
    void moveTo(double share);

    const BrowserModel* model_;
    const Theme* theme_;
    QTimer delay_;
    QVariantAnimation motion_;
    int states_ = 0;   ///< of the listing that have arrived
    double share_ = 0; ///< of the width that is drawn
};

} // namespace ombrel
