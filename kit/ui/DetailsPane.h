#pragma once

#include "browser/DetailsValues.h"
#include "ui/Overlay.h"

#include <QWidget>

#include <cstdint>
#include <optional>

class QBoxLayout;
class QScrollArea;

namespace ombrel {

class AppServices;
class ElidedLabel;
class FactTable;
class ItemPreview;
class OutlineButton;
class Theme;
class ThumbnailStore;
class WrappedName;

/// What is selected in the pane of a tab, or its folder: what it looks like, what it is called and what is
/// known of it. Nothing is read while it cannot be seen. It scrolls where it is higher than its place.
class DetailsPane final : public QWidget {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme; ///< all must outlive it
        AppServices& services;
        ThumbnailStore& thumbnails;
        FileURL home; ///< what "~" stands for
    };

    explicit DetailsPane(const Setting& setting, QWidget* parent = nullptr);

    /// From now on it is about this pane, which may go before it follows another.
    void follow(BrowserModel& pane);

    /// Whether it stays as it is, as long as nobody does anything.
    [[nodiscard]] bool isSettled() const;

Q_SIGNALS:
    /// Of what is selected.
    void openRequested();
    /// Of what is selected or, without a selection, of the folder.
    void propertiesRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void layOut();
    void takeSizes();
    void arrangeButtons();
    void refresh();
    void refreshButtons();
    /// Why the folder that it is about cannot be shown; nothing when it can, or it is about something else.
    [[nodiscard]] std::optional<OverlayContent> troubleNow() const;
    [[nodiscard]] QString nameNow() const;
    [[nodiscard]] QString typeNow() const;

    const Theme* theme_;
    AppServices* services_;
    FileURL home_;
    DetailsValues values_;
    QMetaObject::Connection following_;
    QScrollArea* scroll_;
    QWidget* content_;
    ItemPreview* preview_;
    WrappedName* name_;
    ElidedLabel* type_;
    FactTable* facts_;
    QBoxLayout* buttons_;
    OutlineButton* open_;
    OutlineButton* properties_;
};

} // namespace ombrel
