#pragma once

#include "base/FileURL.h"
#include "ui/ActivePane.h"
#include "ui/FieldFrame.h"

#include <QPointer>
#include <QString>

namespace ombrel {

class AddressError;
class AddressField;
class AppServices;
class BrowserTabsModel;
class CrumbBar;
class FolderList;
class GlyphButton;

/// Where the active tab is: as crumbs, or, while an address is typed, as a text field. A refused address
/// keeps the field, with the reason under it.
class AddressBar final : public FieldFrame {
    Q_OBJECT

public:
    /// All must outlive it; addresses begin at `home` where nothing nearer is known.
    AddressBar(BrowserTabsModel& tabs, AppServices& services, const Theme& theme, FileURL home,
               QWidget* parent = nullptr);

    /// Turns the bar into a field with the whole address selected.
    void edit();
    [[nodiscard]] bool isEditing() const;
    [[nodiscard]] CrumbBar& crumbBar() const noexcept { return *crumbs_; }
    [[nodiscard]] AddressField& field() const noexcept { return *field_; }
    [[nodiscard]] const AddressError& error() const noexcept { return *error_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// An address was entered, or given up: the keyboard goes back to the files.
    void finished();
    void openInNewWindowRequested(const ombrel::FileURL& folder);

protected:
    void arrange() override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followPane(BrowserModel& pane, QObject& context);
    void follow();
    void stopEditing();
    void enter();
    void refuse(const QString& message);
    void clearError();
    void showChildren(std::size_t crumb, const QRect& below);
    void showCrumbMenu(std::size_t crumb, QPoint at);
    void showRecent();
    [[nodiscard]] QString wholeAddress() const;

    BrowserTabsModel* tabs_;
    ActivePane pane_;
    AppServices* services_;
    FileURL home_;
    CrumbBar* crumbs_;
    AddressField* field_;
    GlyphButton* recent_;
    AddressError* error_;
    QPointer<FolderList> children_; ///< of a crumb, while they are listed
};

} // namespace ombrel
