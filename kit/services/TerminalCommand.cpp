#include "services/TerminalCommand.h"

#include "operations/ToolProcess.h"

#include <array>
#include <cstdint>

namespace ombrel::TerminalCommand {
namespace {

/// How a terminal that hands over to one that runs already is told of the folder.
enum class Folder : std::uint8_t {
    working,  ///< by its working folder alone
    joined,   ///< "--working-directory=FOLDER"
    separate, ///< "--workdir FOLDER"
};

struct Terminal {
    const char* name;
    Folder folder = Folder::working;
};

constexpr auto terminals = std::to_array<Terminal>({
    {"xdg-terminal-exec"},
    {"x-terminal-emulator"},
    {"gnome-terminal", Folder::joined},
    {"ptyxis", Folder::joined},
    {"kgx", Folder::joined},
    {"konsole", Folder::separate},
    {"xfce4-terminal", Folder::joined},
    {"mate-terminal", Folder::joined},
    {"lxterminal", Folder::joined},
    {"qterminal"},
    {"deepin-terminal"},
    {"tilix", Folder::joined},
    {"terminator", Folder::joined},
    {"alacritty"},
    {"kitty"},
    {"foot"},
    {"wezterm"},
    {"urxvt"},
    {"st"},
    {"xterm"},
});

} // namespace

std::optional<std::vector<std::string>> find(const FileURL& folder, const std::string& search) {
    for (const Terminal& terminal : terminals) {
        const auto path = ToolProcess::find(terminal.name, search);
        if (!path) continue;
        std::vector<std::string> words{*path};
        if (terminal.folder == Folder::joined) words.push_back("--working-directory=" + folder.path());
        if (terminal.folder == Folder::separate) words.insert(words.end(), {"--workdir", folder.path()});
        return words;
    }
    return std::nullopt;
}

} // namespace ombrel::TerminalCommand
