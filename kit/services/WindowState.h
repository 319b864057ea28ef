#pragma once

#include <QJsonObject>

#include <optional>

namespace ombrel {

/// What a window leaves to the first one of the next start, in device-independent pixels. A plain value.
struct WindowState {
    int width = 0, height = 0; ///< when it is not maximised
    bool isMaximized = false;
    int treeWidth = 0; ///< 0: folded away
    int detailsWidth = 0;

    /// Nothing where something is missing or of another type, or the size is none.
    [[nodiscard]] static std::optional<WindowState> fromStored(const QJsonObject& stored);
    [[nodiscard]] QJsonObject stored() const;

    friend bool operator==(const WindowState&, const WindowState&) = default;
};

} // namespace ombrel
