#pragma once

#include "cli/Command.h"

// Each command is defined in a file of its own name; twins share one.
namespace ombrel::cli {

extern const Command listCommand;
extern const Command copyCommand;
extern const Command moveCommand;
extern const Command renameCommand;
extern const Command newFolderCommand;
extern const Command newFileCommand;
extern const Command trashCommand;
extern const Command trashListCommand;
extern const Command restoreCommand;
extern const Command emptyTrashCommand;
extern const Command deleteCommand;
extern const Command compressCommand;
extern const Command extractCommand;
extern const Command findCommand;
extern const Command watchCommand;
extern const Command volumesCommand;
extern const Command grantsCommand;
extern const Command parsePathCommand;
extern const Command settingsCommand;

} // namespace ombrel::cli
