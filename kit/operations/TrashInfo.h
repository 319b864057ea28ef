#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// What a trash keeps of an item beside it, in "info/<name>.trashinfo" (the desktop's trash convention 1.0).
struct TrashInfo {
    static constexpr std::string_view extension = ".trashinfo";

    /// Where the item was, as bytes: absolute, or relative to the folder that the trash stands in.
    std::string path;
    /// When it was put there, in seconds since 1970-01-01 UTC; nothing when the file does not say so in a
    /// readable form. The file has the local time without a zone, so a date from another zone is off by the
    /// difference.
    std::optional<std::int64_t> deletedAt;

    /// The file's contents.
    [[nodiscard]] std::string text() const;
    /// Nothing when there is no "[Trash Info]" group with a path in it that could be one: not empty, without
    /// NUL and without a ".." component. Of several equal keys the first counts; anything else is ignored.
    [[nodiscard]] static std::optional<TrashInfo> parse(std::string_view text);

    friend bool operator==(const TrashInfo&, const TrashInfo&) = default;
};

/// "2026-02-28T23:05:09", in local time.
[[nodiscard]] std::string trashDateText(std::int64_t secondsSince1970);

} // namespace ombrel
