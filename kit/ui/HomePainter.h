#pragma once

#include "ui/HomeLayout.h"
#include "ui/Theme.h"

#include <QPainter>

#include <optional>
#include <utility>

namespace ombrel {

/// Paints what stands on the home page, and knows where the buttons in it are.
class HomePainter {
public:
    struct Look {
        bool isHovered = false;
        bool isSelected = false;
        bool isActive = false;  ///< the page has the keyboard
        bool isCurrent = false; ///< and it is here
        bool isButtonHovered = false;
        bool isButtonPressed = false;
        bool isDropTarget = false;
    };

    /// Both must outlive it.
    HomePainter(const HomeModel& model, const Theme& theme) : model_(&model), theme_(&theme) {}

    void setDirection(Qt::LayoutDirection direction) noexcept { direction_ = direction; }
    /// `rect` is where the item is painted.
    void paint(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const;
    /// The outline and what is said instead of rows.
    void paintLocationsFrame(QPainter& painter, const QRect& frame, const QRect& emptyText) const;

    /// What can be clicked by itself in an entry; empty when there is nothing. "Allow again…" and the menu of
    /// a location, the button of a volume that can be ejected.
    [[nodiscard]] QRect buttonOf(const HomeItem& item, const QRect& rect) const;
    /// The same in words.
    [[nodiscard]] QString buttonText(const HomeItem& item) const;

private:
    using Fonts = std::pair<QFont, QFont>;
    void paintHead(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const;
    void paintPin(QPainter& painter, const PinnedPlace& pin, const QRect& rect, const Look& look) const;
    void paintLocation(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const;
    void paintAddLocation(QPainter& painter, const QRect& rect, const Look& look) const;
    void paintVolume(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const;
    void paintCapacity(QPainter& painter, const VolumePlace& volume, const QRect& column,
                       const Look& look) const;
    void paintCard(QPainter& painter, const QRect& rect, const Look& look) const;
    void paintRowGround(QPainter& painter, const HomeItem& item, const QRect& rect, const Look& look) const;
    QRect paintPill(QPainter& painter, const GrantedPlace& location, int right, const QRect& row) const;
    void paintButtonGround(QPainter& painter, const QRect& button, const Look& look) const;
    /// Two lines of text, the second one smaller; both elided.
    void paintLines(QPainter& painter, const QRect& box, const QString& first, const QString& second,
                    ThemeColor ink, const Look& look) const;
    /// What is written in `usual`, unless the ground is too loud for it.
    [[nodiscard]] QColor ink(ThemeColor usual, const Look& look) const;
    /// Of a glyph that is a button.
    [[nodiscard]] QColor buttonInk(const Look& look) const;
    [[nodiscard]] std::optional<ThemeColor> fillOf(const Look& look) const;
    [[nodiscard]] QRect mirrored(const QRect& part, const QRect& within) const;
    [[nodiscard]] int size(ThemeSize token) const { return theme_->size(token); }

    const HomeModel* model_;
    const Theme* theme_;
    Qt::LayoutDirection direction_ = Qt::LeftToRight;
};

} // namespace ombrel
