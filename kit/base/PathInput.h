#pragma once

#include "base/FileURL.h"
#include "base/RawValue.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string_view>

/// What a person types into the address bar, turned into a location. Pure text: whether anything stands there
/// shows when it is opened.
namespace ombrel::PathInput {

/// Why some text is not a location.
enum class Refusal : std::uint8_t {
    empty,               ///< nothing but white space
    windowsPath,         ///< a Windows drive or network path
    relativeWithoutBase, ///< a relative path where there is no folder to start from
    invalid,             ///< holds a NUL, or is a "file:" URI that names nothing on this machine
};

using Result = std::expected<FileURL, Refusal>;

/// The location that `text` (bytes, UTF-8 where it can be) stands for, ".." resolved by text alone; links are
/// not looked at.
///
/// White space around it does not count. Understood are absolute paths, "~" and "~/…" below `home`, "file:"
/// URIs, and paths relative to `base`, the folder that is shown (nothing on a page that shows none).
/// Everything else, such as
/// "~name", "$HOME" or a URI of another scheme, is a relative path.
[[nodiscard]] Result parse(std::string_view text, const std::optional<FileURL>& base, const FileURL& home);

/// "C:", "C:/…", "C:\…", or anything that begins with two backslashes. "C:x" is none.
[[nodiscard]] bool isWindowsPath(std::string_view text) noexcept;

/// The text key of a refusal; empty for `empty`, about which there is nothing to say.
[[nodiscard]] std::string_view messageKey(Refusal refusal) noexcept;

/// The home folder of the user whom the process runs as, from the user database; where that knows none,
/// $HOME; where that is no absolute path, the root. Asked once, for the database may be a server.
[[nodiscard]] const FileURL& userHomeDirectory();

} // namespace ombrel::PathInput

template <>
struct ombrel::RawValues<ombrel::PathInput::Refusal> {
    static constexpr std::string_view names[] = {"empty", "windowsPath", "relativeWithoutBase", "invalid"};
};
