#pragma once

#include <string>
#include <string_view>

/// Rules about one component of a path. Names are bytes as the kernel stores them: 1 to 255 bytes on most
/// file systems, never '/' or NUL, and not necessarily UTF-8.
namespace ombrel::FileName {

/// What follows the last dot, without it, as it is spelled. Empty when there is none: "Makefile", ".profile",
/// "notes.". An ending that holds a space is prose ("v1. Final draft"), not an extension.
[[nodiscard]] std::string_view extension(std::string_view name) noexcept;

/// The name without its extension and the dot before it; the whole name when it has no extension.
[[nodiscard]] std::string_view stem(std::string_view name) noexcept;

/// ASCII letters lowered, every other byte kept.
[[nodiscard]] std::string loweredASCII(std::string_view text);

[[nodiscard]] bool isValidUTF8(std::string_view bytes) noexcept;

/// Text for people: valid UTF-8 is kept but for control characters; each byte that is not UTF-8, and each
/// control character, becomes U+FFFD; direction overrides and isolates (U+202A to U+202E, U+2066 to U+2069,
/// U+200E, U+200F, U+061C) are dropped from sight by the same mark, so that no name can disguise its ending.
/// Never to be written back.
[[nodiscard]] std::string displayText(std::string_view name);

} // namespace ombrel::FileName
