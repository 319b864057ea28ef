#pragma once

#include <QIcon>

namespace ombrel {

class Theme;
struct DesktopApplication;

/// The icon of an application, from the desktop's icon theme; a general one where it has none. `theme` must
/// outlive it.
[[nodiscard]] QIcon applicationIcon(const Theme& theme, const DesktopApplication& application);

} // namespace ombrel
