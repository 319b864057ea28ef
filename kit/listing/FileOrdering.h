#pragma once

#include "listing/FileSort.h"

/// The exact comparisons that FileSort is made of, for those who have already compared a part. Any thread.
namespace ombrel::FileOrdering {

/// By the locale's rules, then by bytes: negative, zero (only for the same name) or positive.
[[nodiscard]] int compareNames(FileItemView a, FileItemView b) noexcept;

/// Whether `a` goes before `b`, both of the same kind text where the sort is by kind.
[[nodiscard]] bool isBeforeWithinKind(const FileSort& sort, FileItemView a, FileItemView b) noexcept;

} // namespace ombrel::FileOrdering
