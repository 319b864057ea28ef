#pragma once

#include "ui/ActivePane.h"
#include "ui/FieldFrame.h"

#include <QTimer>

class QLineEdit;

namespace ombrel {

class BrowserTabsModel;
class GlyphButton;

/// The field that searches below the folder of the active tab: on Enter, and by itself once the typing rests.
/// Emptied, it leads back to the folder.
class SearchField final : public FieldFrame {
    Q_OBJECT

public:
    /// Both must outlive it.
    SearchField(BrowserTabsModel& tabs, const Theme& theme, QWidget* parent = nullptr);

    [[nodiscard]] QLineEdit& field() const noexcept { return *field_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The keyboard goes back to the files.
    void finished();

protected:
    void arrange() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followPane(BrowserModel& pane, QObject& context);
    void follow();
    void refreshInvitation();
    void refreshAbility();
    void takeText(const QString& text);
    void search();
    void clear();
    void focus();

    ActivePane pane_;
    QLineEdit* field_;
    GlyphButton* clear_;
    QTimer rest_; ///< since the last key
};

} // namespace ombrel
