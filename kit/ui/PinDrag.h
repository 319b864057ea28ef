#pragma once

#include "base/FileURL.h"

#include <QMimeData>
#include <QPoint>

#include <cstddef>
#include <memory>
#include <optional>

class QAbstractScrollArea;
class QRect;

namespace ombrel::PinDrag {

/// A folder as others take it in a drag; of a pinned one, with its number among the pins.
[[nodiscard]] std::unique_ptr<QMimeData> dataOf(const FileURL& folder, std::optional<std::size_t> pin);
/// Drags that from `place` in the viewport of `view`, where the pointer is at `pointer`; returns when the
/// drag is over.
void run(QAbstractScrollArea& view, const FileURL& folder, std::optional<std::size_t> pin, const QRect& place,
         QPoint pointer);
/// The number of the pin that is dragged, by this program.
[[nodiscard]] std::optional<std::size_t> pinOf(const QMimeData& data);

} // namespace ombrel::PinDrag
