#pragma once

#include "listing/FileStatus.h"

#include <QString>

#include <cstdint>

/// Values as people read them, by the default locale.
namespace ombrel::Formats {

/// A KB is 1,024 bytes. Whole bytes below one KB, one decimal below ten of a unit, none above: "29 KB", "4.8
/// MB".
[[nodiscard]] QString size(std::int64_t bytes);

/// The locale's short date and time, in local time, with the year in full.
[[nodiscard]] QString dateAndTime(const FileTime& time);

/// From the first moment to the last; of one day the date is said once, and one moment as it is.
[[nodiscard]] QString period(const FileTime& first, const FileTime& last);

/// With all bytes counted: "4.8 MB (5,033,164 bytes)".
[[nodiscard]] QString sizeInFull(std::int64_t bytes);

[[nodiscard]] QString number(std::int64_t count);

} // namespace ombrel::Formats
