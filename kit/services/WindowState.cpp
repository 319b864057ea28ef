#include "services/WindowState.h"

namespace ombrel {

std::optional<WindowState> WindowState::fromStored(const QJsonObject& stored) {
    WindowState state;
    const auto take = [&](const char* name, int& into) {
        into = stored.value(QLatin1String(name)).toInt(-1);
        return into >= 0;
    };
    const bool isWhole = take("width", state.width) && take("height", state.height) &&
                         take("treeWidth", state.treeWidth) && take("detailsWidth", state.detailsWidth);
    if (!isWhole || state.width == 0 || state.height == 0) return std::nullopt;
    state.isMaximized = stored.value(QLatin1String("isMaximized")).toBool();
    return state;
}

QJsonObject WindowState::stored() const {
    return {{QStringLiteral("width"), width},
            {QStringLiteral("height"), height},
            {QStringLiteral("isMaximized"), isMaximized},
            {QStringLiteral("treeWidth"), treeWidth},
            {QStringLiteral("detailsWidth"), detailsWidth}};
}

} // namespace ombrel
