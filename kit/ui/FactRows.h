#pragma once

#include "browser/DetailsValues.h"
#include "browser/ItemProperties.h"
#include "browser/Places.h"
#include "ui/FactTable.h"

#include <functional>
#include <vector>

/// What is known of items, as the rows that the details pane and the properties show.
namespace ombrel::FactRows {

/// What a folder is called where an item lies in it.
using Whereabouts = std::function<QString(const FileURL& folder)>;

/// Of one item or of several. While `values` are being read, rows that are likely to come keep their place.
[[nodiscard]] std::vector<Fact> inBrief(const DetailsValues& values, const Whereabouts& whereabouts);

/// All but the name; nothing before they have been read.
[[nodiscard]] std::vector<Fact> inFull(const ItemProperties& properties);
[[nodiscard]] std::vector<Fact> inFull(const VolumePlace& volume);

/// Name or path, for people.
[[nodiscard]] QString nameOf(const FileURL& item);

/// Why nothing could be read of an item.
[[nodiscard]] QString problem(const POSIXFailure& failure);

} // namespace ombrel::FactRows
