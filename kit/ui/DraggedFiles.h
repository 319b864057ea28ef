#pragma once

#include "base/FileURL.h"

#include <vector>

class QMimeData;

namespace ombrel::DraggedFiles {

/// Whether a drag brings files of this machine.
[[nodiscard]] bool areIn(const QMimeData* data);
/// The files that a drag brings, in its order; names that are not UTF-8 come through.
[[nodiscard]] std::vector<FileURL> of(const QMimeData* data);

} // namespace ombrel::DraggedFiles
