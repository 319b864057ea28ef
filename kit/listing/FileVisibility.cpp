#include "listing/FileVisibility.h"

#include "base/FileName.h"
#include "listing/TypeDatabase.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace ombrel::FileVisibility {
namespace {

constexpr auto protectedNames = std::to_array<std::string_view>({
    ".DS_Store",
    ".localized",
    "Icon\r",
    ".Spotlight-V100",
    ".fseventsd",
    ".Trashes",
    ".Trash",
    ".TemporaryItems",
    ".DocumentRevisions-V100",
    ".VolumeIcon.icns",
    ".com.apple.timemachine.donotpresent",
    ".com.apple.timemachine.supported",
    ".apdisk",
    ".PKInstallSandboxManager",
    ".PKInstallSandboxManager-SystemSoftware",
    ".hotfiles.btree",
    ".journal",
    ".journal_info_block",
    ".HFS+ Private Directory Data\r",
    ".file",
    ".vol",
    ".CFUserTextEncoding",
    ".MobileBackups",
    ".Spotlight-V100-store",
    "$RECYCLE.BIN",
    "RECYCLER",
    "System Volume Information",
    "desktop.ini",
    "Desktop.ini",
    "Thumbs.db",
    "pagefile.sys",
    "hiberfil.sys",
    "swapfile.sys",
    "$Recycle.Bin",
});

/// What runs something, or opens something else: never hidden, so that a harmless-looking name cannot hide a
/// program. "prefPane" is spelled so and compared in lower case, which leaves it without effect.
constexpr auto alwaysShownExtensions = std::to_array<std::string_view>({
    "app",   "exe",  "msi",      "com",    "bat",      "cmd",    "scr",  "pif",    "vbs",         "js",
    "jse",   "wsf",  "ps1",      "jar",    "command",  "tool",   "sh",   "zsh",    "csh",         "py",
    "pl",    "rb",   "pkg",      "mpkg",   "workflow", "action", "scpt", "scptd",  "applescript", "terminal",
    "dylib", "kext", "prefPane", "plugin", "appex",    "lnk",    "url",  "webloc",
});

/// Which first bytes a protected name has; leaves few names to compare.
constexpr auto firstBytes = [] {
    std::array<bool, 256> table{};
    for (const auto name : protectedNames)
        table[static_cast<unsigned char>(name.front())] = true;
    return table;
}();

} // namespace

bool isProtectedSystemItem(std::string_view name) {
    if (name.empty() || !firstBytes[static_cast<unsigned char>(name.front())]) return false;
    return name.starts_with("._") || std::ranges::find(protectedNames, name) != protectedNames.end();
}

std::string_view nameHidingKnownExtension(FileItemView item) {
    return item.isDirectoryLike() ? item.name() : nameHidingKnownExtension(item.name());
}

std::string_view nameHidingKnownExtension(std::string_view name) {
    const auto extension = FileName::extension(name);
    const auto base = FileName::stem(name);
    if (extension.empty() || base.empty() || base.ends_with('.')) return name;
    const auto lowered = FileName::loweredASCII(extension);
    if (std::ranges::find(alwaysShownExtensions, lowered) != alwaysShownExtensions.end()) return name;
    return isKnownExtension(extension) ? base : name;
}

bool isKnownExtension(std::string_view extension) {
    const TypeIndex type = TypeDatabase::fileType(extension);
    return type != 0 && !TypeDatabase::isExecutable(type) && !TypeDatabase::isScript(type) &&
           !TypeDatabase::isApplication(type);
}

std::optional<std::string_view> hiddenExtension(FileItemView item, std::string_view displayedAs) {
    if (displayedAs == item.name()) return std::nullopt;
    return FileName::extension(item.name());
}

} // namespace ombrel::FileVisibility
