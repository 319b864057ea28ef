#pragma once

#include "operations/OperationConflict.h"
#include "ui/FileClass.h"

#include <QBoxLayout>
#include <QWidget>

#include <optional>

namespace ombrel {

class Theme;
class ThumbnailStore;

/// Both items that want one name, beside one another to compare, or below one another where there is little
/// room.
class ConflictSides final : public QWidget {
    Q_OBJECT

public:
    /// `theme` and, where given, `thumbnails` must outlive it.
    ConflictSides(const Theme& theme, const ConflictContext& context, ThumbnailStore* thumbnails,
                  QWidget* parent = nullptr);

    /// Whether the first of two values is the greater one; nothing when they are equal or one is not known.
    template <typename Value>
    [[nodiscard]] static std::optional<bool> isFirstGreater(const std::optional<Value>& first,
                                                            const std::optional<Value>& second) {
        if (!first || !second || *first == *second) return std::nullopt;
        return *second < *first;
    }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    const Theme* theme_;
    QBoxLayout* row_;
};

} // namespace ombrel
