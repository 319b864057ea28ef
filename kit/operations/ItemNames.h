#pragma once

#include "base/RawValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// Why some text cannot name an item.
enum class InvalidNameReason : std::uint8_t {
    empty,
    reserved,
    containsSlash,
    containsNull,
    tooLong,
    windowsCharacters
};

template <>
struct RawValues<InvalidNameReason> {
    static constexpr std::string_view names[] = {"empty",        "reserved", "containsSlash",
                                                 "containsNull", "tooLong",  "windowsCharacters"};
};

/// Whether a name must also suit Windows.
enum class WindowsRules : bool { off, on };
/// Whether what follows the last dot is kept apart: for files yes, for folders and packages no.
enum class KeepExtension : bool { no, yes };

/// The rules for names that a person chooses, and the names that are made from them. Names are bytes; where a
/// rule speaks of characters it reads valid UTF-8 and takes any other byte for a character of its own. Any
/// thread.
namespace ItemNames {

/// The first rule that `name` breaks, in this order: empty or nothing but white space; "." or ".."; with
/// Windows rules one of \ / : * ? " < > |; a slash; a NUL; more than 255 bytes. Nothing when it may be used
/// as it stands.
[[nodiscard]] std::optional<InvalidNameReason> validate(std::string_view name, WindowsRules rules);

struct Split {
    std::string_view base;
    std::optional<std::string_view> extension;
    friend bool operator==(const Split&, const Split&) = default;
};
/// Parts the last extension from the name where it is kept and there is one; ".profile" and "..x" have none.
[[nodiscard]] Split splitExtension(std::string_view name, KeepExtension keep);

/// "Report (2).txt" of "Report.txt" and 2; "Photos.2024 (2)" where the extension is not kept.
[[nodiscard]] std::string numbered(std::string_view name, int number, KeepExtension keep);

} // namespace ItemNames
} // namespace ombrel
