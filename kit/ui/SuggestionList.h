#pragma once

#include "ui/MenuFrame.h"

class QListView;

namespace ombrel {

/// The folders that complete what is typed, floating below a field over the rest of its window. It is no
/// window of its own: what is typed may show and hide it many times a second. The keyboard stays in the
/// field.
class SuggestionList final : public MenuFrame {
    Q_OBJECT

public:
    /// `theme` and `field`, which becomes the focus proxy, must outlive it.
    SuggestionList(const Theme& theme, QWidget* field);

    /// As wide as `bar`, and as high as its rows where the window has room for them.
    void showBelow(const QWidget& bar);
    [[nodiscard]] QListView& rows() const noexcept { return *rows_; }

private:
    QListView* rows_;
};

} // namespace ombrel
