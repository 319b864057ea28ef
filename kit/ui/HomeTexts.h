#pragma once

#include "ui/HomeLayout.h"

#include <QString>

namespace ombrel::HomeTexts {

[[nodiscard]] QString sectionTitle(HomeModel::Section section);
/// "8 folders", "3 volumes".
[[nodiscard]] QString count(HomeModel::Section section, std::size_t count);
/// The words of a location's pill.
[[nodiscard]] QString state(const GrantedPlace& location);
/// "8.6 GB free of 128 GB", or that nothing is known.
[[nodiscard]] QString capacity(const VolumePlace& volume);
/// What assistive programs say of an item.
[[nodiscard]] QString spoken(const HomeModel& model, const HomeItem& item);

} // namespace ombrel::HomeTexts
