#pragma once

#include "ui/Theme.h"

#include <QBoxLayout>

namespace ombrel {

/// Puts the parts of a row of a card below one another where they are too wide for the narrowest progress
/// window, as long words are. To be called once they are all there.
inline void stackWhereTooWide(QBoxLayout& row, const Theme& theme) {
    const int room = theme.size(ThemeSize::progressMinimumWidth) - 2 * theme.size(ThemeSize::space20) -
                     theme.size(ThemeSize::scrollBar);
    if (row.sizeHint().width() > room) row.setDirection(QBoxLayout::TopToBottom);
}

} // namespace ombrel
