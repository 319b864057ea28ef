#include "cli/Commands.h"

#include <array>

namespace ombrel::cli {

std::span<const Command* const> commands() {
    static constexpr std::array all = {
        &listCommand,    &copyCommand,     &moveCommand,      &renameCommand,  &newFolderCommand,
        &newFileCommand, &trashCommand,    &trashListCommand, &restoreCommand, &emptyTrashCommand,
        &deleteCommand,  &compressCommand, &extractCommand,   &findCommand,    &watchCommand,
        &volumesCommand, &grantsCommand,   &parsePathCommand, &settingsCommand};
    return all;
}

std::span<const Option> commonOptions() {
    static constexpr auto all = std::to_array<Option>({
        {"json", "", "cli.option.json"},
        {"0", "", "cli.option.nul"},
        {"lang", "CODE", "cli.option.lang"},
        {"help", "", "cli.option.help"},
    });
    return all;
}

} // namespace ombrel::cli
