#pragma once

#include "base/FileURL.h"

#include <QMimeData>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace ombrel::PinDrag {

/// A folder as others take it in a drag; of a pinned one, with its number among the pins.
[[nodiscard]] std::unique_ptr<QMimeData> dataOf(const FileURL& folder, std::optional<std::size_t> pin);
/// The number of the pin that is dragged, by this program.
[[nodiscard]] std::optional<std::size_t> pinOf(const QMimeData& data);
/// The local files and folders that are dragged.
[[nodiscard]] std::vector<FileURL> itemsOf(const QMimeData& data);

} // namespace ombrel::PinDrag
