<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name></name>
    <message id="access.bookmarkCreationFailed"><source></source><translation>The permission could not be made.</translation></message>
    <message id="access.bookmarkInvalid"><source></source><translation>The permission has expired. Choose the folder again to renew it.</translation></message>
    <message id="access.denied"><source></source><translation>The permission was refused. Choose the folder again.</translation></message>
    <message id="access.panel.knownFolder"><source></source><translation>Allow Ombrel to open this folder.</translation></message>
    <message id="access.panel.message"><source></source><translation>Choose a folder that Ombrel may open.</translation></message>
    <message id="access.panel.prompt"><source></source><translation>Allow</translation></message>
    <message id="access.panel.reauthorize"><source></source><translation>Choose this folder again to renew the permission.</translation></message>
    <message id="access.staleNotRenewable"><source></source><translation>The permission could not be renewed. Choose the folder again.</translation></message>
    <message id="access.storeFailed"><source></source><translation>The list of locations could not be saved.</translation></message>
    <message id="access.storeUnreadable"><source></source><translation>The list of locations could not be read.</translation></message>
    <message id="access.unavailable"><source></source><translation>The folder is not there now. It may be on a volume that is not connected.</translation></message>
    <message id="app.error.darkIsForPictures"><source></source><translation>The option --dark goes with --screenshot only.</translation></message>
    <message id="app.error.noDisplay"><source></source><translation>Ombrel needs a display: start it from a desktop, or under “xvfb-run” for one that nobody sees.</translation></message>
    <message id="app.error.noSuchOption"><source></source><translation>There is no option {1}.</translation></message>
    <message id="app.error.notALocation"><source></source><translation>“{1}” is not a location that can be opened.</translation></message>
    <message id="app.error.optionNeedsFile"><source></source><translation>The option {1} needs the name of a file.</translation></message>
    <message id="app.error.picture"><source></source><translation>The picture {1} could not be written.</translation></message>
    <message id="app.error.pictureFolder"><source></source><translation>The folder {1} could not be made.</translation></message>
    <message id="app.error.pictureFiles"><source></source><translation>The files that the pictures show could not be made.</translation></message>
    <message id="app.error.pictureState"><source></source><translation>The window after the picture {1} did not come about.</translation></message>
    <message id="app.error.seeHelp"><source></source><translation>“ombrel --help” shows what is possible.</translation></message>
    <message id="app.error.seriesHasItsOwnFolders"><source></source><translation>The option --screenshots makes the folders that it shows.</translation></message>
    <message id="app.error.tooManyFolders"><source></source><translation>A picture shows one folder.</translation></message>
    <message id="app.help.dark"><source></source><translation>render it dark</translation></message>
    <message id="app.help.help"><source></source><translation>show this text, and end</translation></message>
    <message id="app.help.screenshot"><source></source><translation>render one window without a display into a PNG file, and end</translation></message>
    <message id="app.help.screenshots"><source></source><translation>render a series of windows into PNG files in a folder, and end</translation></message>
    <message id="app.help.summary"><source></source><translation>Opens a window for each folder, or for your home folder.</translation></message>
    <message id="app.help.usage"><source></source><translation>Usage: ombrel [OPTIONS] [FOLDER…]</translation></message>
    <message id="app.help.version"><source></source><translation>show the version, and end</translation></message>
    <message id="archive.detail.damaged"><source></source><translation>The archive is damaged or incomplete, or not of the kind that its name says.</translation></message>
    <message id="archive.detail.encrypted"><source></source><translation>The archive is protected with a password.</translation></message>
    <message id="archive.detail.missingTool"><source></source><translation>The program “{1}” is not installed. Install the package “{2}”.</translation></message>
    <message id="archive.detail.status"><source></source><translation>“{1}” ended with the status {2}.</translation></message>
    <message id="archive.detail.unsafe"><source></source><translation>The archive reaches for places outside its folder.</translation></message>
    <message id="archive.detail.unsupported"><source></source><translation>Archives of this kind are not supported.</translation></message>
    <message id="archive.failed.compress"><source></source><translation>The items could not be compressed: {1}</translation></message>
    <message id="archive.failed.extract"><source></source><translation>The archive could not be extracted: {1}</translation></message>
    <message id="archive.unnamed"><source></source><translation>Archive</translation></message>
    <message id="cli.ask.cancel"><source></source><translation>Cancel</translation></message>
    <message id="cli.ask.prompt"><source></source><translation>Type a number, with * behind it for all further ones too:</translation></message>
    <message id="cli.compress.name"><source></source><translation>The name of the archive; “.zip” is added where it is missing. Named after the first item unless told otherwise.</translation></message>
    <message id="cli.compress.summary"><source></source><translation>Makes a ZIP archive of items in a folder and prints its path; a name that is taken is numbered.</translation></message>
    <message id="cli.copy.summary"><source></source><translation>Copies items into a folder and checks every copy.</translation></message>
    <message id="cli.delete.summary"><source></source><translation>Removes items for good, with everything in them.</translation></message>
    <message id="cli.emptyTrash.summary"><source></source><translation>Removes everything in the trash for good.</translation></message>
    <message id="cli.error.emptyPath"><source></source><translation>An empty path names nothing.</translation></message>
    <message id="cli.error.item"><source></source><translation>{1}: {2}</translation></message>
    <message id="cli.error.missingOperand"><source></source><translation>Something is missing: {1}.</translation></message>
    <message id="cli.error.missingValue"><source></source><translation>The option {1} needs a value.</translation></message>
    <message id="cli.error.noCommand"><source></source><translation>No command is given.</translation></message>
    <message id="cli.error.noTerminal"><source></source><translation>The option {1} can only ask on a terminal.</translation></message>
    <message id="cli.error.noWorkingFolder"><source></source><translation>The working folder can’t be found: {1}.</translation></message>
    <message id="cli.error.notANumber"><source></source><translation>The option {1} needs a whole number, not “{2}”.</translation></message>
    <message id="cli.error.output"><source></source><translation>The output could not be written: {1}.</translation></message>
    <message id="cli.error.seeHelp"><source></source><translation>“{1} --help” shows what is possible.</translation></message>
    <message id="cli.error.tooManyOperands"><source></source><translation>“{1}” is one argument too many.</translation></message>
    <message id="cli.error.unexpectedValue"><source></source><translation>The option {1} takes no value.</translation></message>
    <message id="cli.error.unknownCommand"><source></source><translation>There is no command “{1}”.</translation></message>
    <message id="cli.error.unknownOption"><source></source><translation>There is no option {1}.</translation></message>
    <message id="cli.error.unknownValue"><source></source><translation>The option {1} does not know “{2}”. Possible are: {3}.</translation></message>
    <message id="cli.error.unknownVerb"><source></source><translation>“{1}” is not possible here. Possible are: {2}.</translation></message>
    <message id="cli.extract.summary"><source></source><translation>Extracts archives, each beside itself into a new folder, and prints their paths.</translation></message>
    <message id="cli.find.all"><source></source><translation>Find hidden and protected items too, and look into such folders.</translation></message>
    <message id="cli.find.limit"><source></source><translation>The search ended at {1} matches. There may be more.</translation></message>
    <message id="cli.find.summary"><source></source><translation>Finds the items below a folder whose names contain a text, and prints them as they are found.</translation></message>
    <message id="cli.grants.summary"><source></source><translation>Lists the folders that Ombrel may open, adds or removes some, or finds them again.</translation></message>
    <message id="cli.grants.unknown"><source></source><translation>This folder is not among the locations.</translation></message>
    <message id="cli.help.commands"><source></source><translation>Commands:</translation></message>
    <message id="cli.help.commonOptions"><source></source><translation>Options of every command:</translation></message>
    <message id="cli.help.options"><source></source><translation>Options:</translation></message>
    <message id="cli.help.usage"><source></source><translation>Usage: {1}</translation></message>
    <message id="cli.list.all"><source></source><translation>Show hidden and protected items too.</translation></message>
    <message id="cli.list.batches"><source></source><translation>Tell on standard error how the listing grows: items, partial or complete, unreadable items.</translation></message>
    <message id="cli.list.descending"><source></source><translation>Reverse the order; folders stay first.</translation></message>
    <message id="cli.list.firstBatch"><source></source><translation>Items before the first partial result (200).</translation></message>
    <message id="cli.list.mixed"><source></source><translation>Sort folders among the files.</translation></message>
    <message id="cli.list.sort"><source></source><translation>Sort by name, kind, size or modificationDate (name).</translation></message>
    <message id="cli.list.summary"><source></source><translation>Lists a folder in the order in which the window shows it.</translation></message>
    <message id="cli.list.unreadable"><source></source><translation>This item could not be examined: {1}.</translation></message>
    <message id="cli.move.summary"><source></source><translation>Moves items into a folder; between volumes every copy is checked before its original goes.</translation></message>
    <message id="cli.newFile.summary"><source></source><translation>Makes an empty file and prints its path; a name that is taken is numbered.</translation></message>
    <message id="cli.newFolder.summary"><source></source><translation>Makes a folder and prints its path; a name that is taken is numbered.</translation></message>
    <message id="cli.option.conflict"><source></source><translation>What to do about an item whose name is taken: skip, keepBoth, replace, cancel or ask (ask on a terminal, else skip).</translation></message>
    <message id="cli.option.help"><source></source><translation>Show this help.</translation></message>
    <message id="cli.option.json"><source></source><translation>Print one JSON object a line.</translation></message>
    <message id="cli.option.lang"><source></source><translation>Speak this language, for example de or pt-BR.</translation></message>
    <message id="cli.option.nul"><source></source><translation>End plain names with a NUL byte instead of a line end.</translation></message>
    <message id="cli.option.onError"><source></source><translation>What to do about an item that fails: retry (three times, then skip), skip, cancel or ask (ask on a terminal, else skip).</translation></message>
    <message id="cli.parsePath.empty"><source></source><translation>Nothing was typed.</translation></message>
    <message id="cli.parsePath.home"><source></source><translation>The folder that ~ stands for (the user’s home folder).</translation></message>
    <message id="cli.parsePath.relativeTo"><source></source><translation>The folder that a relative path starts from (none).</translation></message>
    <message id="cli.parsePath.summary"><source></source><translation>Tells which folder an address stands for when it is typed into the address bar.</translation></message>
    <message id="cli.progress.of"><source></source><translation>{1} of {2}</translation></message>
    <message id="cli.rename.summary"><source></source><translation>Gives an item another name in its folder.</translation></message>
    <message id="cli.restore.parents"><source></source><translation>Make the folders that an item was in where they are gone.</translation></message>
    <message id="cli.restore.summary"><source></source><translation>Moves items out of the trash to where they were.</translation></message>
    <message id="cli.settings.keptByItself"><source></source><translation>{1} is kept by Ombrel itself.</translation></message>
    <message id="cli.settings.summary"><source></source><translation>Lists the settings, tells where the user’s standard folders stand, prints one setting or changes one.</translation></message>
    <message id="cli.settings.unknownKey"><source></source><translation>There is no setting “{1}”.</translation></message>
    <message id="cli.settings.unknownValue"><source></source><translation>The setting {1} does not know “{2}”. Possible are: {3}.</translation></message>
    <message id="cli.trash.summary"><source></source><translation>Moves items to the trash.</translation></message>
    <message id="cli.trashList.sizes"><source></source><translation>Count the sizes of folders where they are not known.</translation></message>
    <message id="cli.trashList.summary"><source></source><translation>Lists what is in the trash of all volumes: where it is and where it was.</translation></message>
    <message id="cli.volumes.noAnswer"><source></source><translation>The volume does not answer.</translation></message>
    <message id="cli.volumes.noTable"><source></source><translation>The mounted volumes could not be read.</translation></message>
    <message id="cli.volumes.room"><source></source><translation>The capacity could not be read: {1}.</translation></message>
    <message id="cli.volumes.summary"><source></source><translation>Lists the mounted volumes, or tells what is mounted, unmounted and moved.</translation></message>
    <message id="cli.volumes.watch"><source></source><translation>Tell what happens to volumes as it happens, until Ctrl+C.</translation></message>
    <message id="cli.volumes.watching"><source></source><translation>Volumes are watched. Ctrl+C ends it.</translation></message>
    <message id="cli.watch.gone"><source></source><translation>The folder was moved, renamed or deleted, or its volume was unmounted.</translation></message>
    <message id="cli.watch.summary"><source></source><translation>Tells what happens to a folder as it happens, until Ctrl+C.</translation></message>
    <message id="cli.watch.watching"><source></source><translation>The folder is watched. Ctrl+C ends it.</translation></message>
    <message id="confirm.canUndo"><source></source><translation>You can undo this.</translation></message>
    <message id="confirm.cancel"><source></source><translation>Cancel</translation></message>
    <message id="confirm.cannotUndo"><source></source><translation>You can’t undo this.</translation></message>
    <message id="confirm.delete.accept"><source></source><translation>Delete</translation></message>
    <message id="confirm.delete.many" numerus="yes"><source></source><translation><numerusform>Delete {n} item permanently?</numerusform><numerusform>Delete {n} items permanently?</numerusform></translation></message>
    <message id="confirm.delete.one"><source></source><translation>Delete “{1}” permanently?</translation></message>
    <message id="confirm.dissolve.accept"><source></source><translation>Dissolve folder</translation></message>
    <message id="confirm.dissolve.many" numerus="yes"><source></source><translation><numerusform>Dissolve {n} folder?</numerusform><numerusform>Dissolve {n} folders?</numerusform></translation></message>
    <message id="confirm.dissolve.message"><source></source><translation>Its contents move up and the empty folder is removed.</translation></message>
    <message id="confirm.dissolve.messageMany"><source></source><translation>Their contents move up and the empty folders are removed.</translation></message>
    <message id="confirm.dissolve.one"><source></source><translation>Dissolve “{1}”?</translation></message>
    <message id="confirm.dontAskAgain"><source></source><translation>Don’t ask again</translation></message>
    <message id="confirm.openMany.accept"><source></source><translation>Open</translation></message>
    <message id="confirm.openMany.title" numerus="yes"><source></source><translation><numerusform>Open {n} item?</numerusform><numerusform>Open {n} items?</numerusform></translation></message>
    <message id="confirm.quit.accept"><source></source><translation>Cancel them and quit</translation></message>
    <message id="confirm.quit.decline"><source></source><translation>Keep running</translation></message>
    <message id="confirm.quit.title" numerus="yes"><source></source><translation><numerusform>{n} job is still running</numerusform><numerusform>{n} jobs are still running</numerusform></translation></message>
    <message id="confirm.removeLocation.accept"><source></source><translation>Remove</translation></message>
    <message id="confirm.removeLocation.message"><source></source><translation>Nothing in it is deleted.</translation></message>
    <message id="confirm.removeLocation.title"><source></source><translation>Remove “{1}” from the locations?</translation></message>
    <message id="confirm.runProgram.accept"><source></source><translation>Run</translation></message>
    <message id="confirm.runProgram.alternative"><source></source><translation>Show the text</translation></message>
    <message id="confirm.runProgram.many" numerus="yes"><source></source><translation><numerusform>Run {n} program?</numerusform><numerusform>Run {n} programs?</numerusform></translation></message>
    <message id="confirm.runProgram.message"><source></source><translation>It is a program and can do anything that you can do.</translation></message>
    <message id="confirm.runProgram.messageMany"><source></source><translation>They are programs and can do anything that you can do.</translation></message>
    <message id="confirm.runProgram.title"><source></source><translation>Run “{1}”?</translation></message>
    <message id="confirm.showProtected.accept"><source></source><translation>Show</translation></message>
    <message id="confirm.showProtected.message"><source></source><translation>These items belong to the system. Changing them can break things.</translation></message>
    <message id="confirm.showProtected.title"><source></source><translation>Show protected system items?</translation></message>
    <message id="confirm.trash.accept"><source></source><translation>Move to trash</translation></message>
    <message id="confirm.trash.many" numerus="yes"><source></source><translation><numerusform>Move {n} item to the trash?</numerusform><numerusform>Move {n} items to the trash?</numerusform></translation></message>
    <message id="confirm.trash.one"><source></source><translation>Move “{1}” to the trash?</translation></message>
    <message id="conflict.applyToAll"><source></source><translation>Do this for the other conflicts too</translation></message>
    <message id="conflict.batch.title" numerus="yes"><source></source><translation><numerusform>{n} item with the same name is already there</numerusform><numerusform>{n} items with the same names are already there</numerusform></translation></message>
    <message id="conflict.cancel.copy"><source></source><translation>Cancel the copy</translation></message>
    <message id="conflict.cancel.move"><source></source><translation>Cancel the move</translation></message>
    <message id="conflict.cancel.other"><source></source><translation>Cancel</translation></message>
    <message id="conflict.decideEach"><source></source><translation>Decide for each item</translation></message>
    <message id="conflict.decideEach.detail"><source></source><translation>Compare the two items and choose one by one.</translation></message>
    <message id="conflict.keepBoth"><source></source><translation>Keep both</translation></message>
    <message id="conflict.keepBoth.detail"><source></source><translation>The new item is saved as “{1}”.</translation></message>
    <message id="conflict.merge.detail"><source></source><translation>The folders are merged.</translation></message>
    <message id="conflict.replace"><source></source><translation>Replace the existing items</translation></message>
    <message id="conflict.replace.detail"><source></source><translation>The existing item is overwritten by the new one.</translation></message>
    <message id="conflict.replaceAll.detail" numerus="yes"><source></source><translation><numerusform>The {n} item in “{1}” will be overwritten.</numerusform><numerusform>The {n} items in “{1}” will be overwritten.</numerusform></translation></message>
    <message id="conflict.replaceFolder.detail"><source></source><translation>The existing folder and everything in it is removed.</translation></message>
    <message id="conflict.replaceOne"><source></source><translation>Replace</translation></message>
    <message id="conflict.single.existing"><source></source><translation>Existing item</translation></message>
    <message id="conflict.single.new"><source></source><translation>New item</translation></message>
    <message id="conflict.single.title"><source></source><translation>“{1}” is already there</translation></message>
    <message id="conflict.skipAll"><source></source><translation>Skip these items</translation></message>
    <message id="conflict.skipAll.detail" numerus="yes"><source></source><translation><numerusform>The {n} item stays as it is. {1}</numerusform><numerusform>The {n} items stay as they are. {1}</numerusform></translation></message>
    <message id="conflict.skipAll.othersCopied" numerus="yes"><source></source><translation><numerusform>The other one is copied.</numerusform><numerusform>The other {n} are copied.</numerusform></translation></message>
    <message id="conflict.skipAll.othersMoved" numerus="yes"><source></source><translation><numerusform>The other one is moved.</numerusform><numerusform>The other {n} are moved.</numerusform></translation></message>
    <message id="conflict.skipOne"><source></source><translation>Skip</translation></message>
    <message id="conflict.skipOne.detail"><source></source><translation>The existing item stays as it is.</translation></message>
    <message id="error.directory.io"><source></source><translation>The folder could not be read: {1}.</translation></message>
    <message id="error.directory.notADirectory"><source></source><translation>This is not a folder.</translation></message>
    <message id="error.directory.notFound"><source></source><translation>This folder does not exist.</translation></message>
    <message id="error.directory.permissionDenied"><source></source><translation>You don’t have permission to open this folder.</translation></message>
    <message id="error.directory.volumeUnavailable"><source></source><translation>The volume is not connected.</translation></message>
    <message id="error.fact.missingBytes"><source></source><translation>There is not enough space: {1} more is needed.</translation></message>
    <message id="error.fact.toolWords"><source></source><translation>{1} reported: {2}</translation></message>
    <message id="error.op.cancelled"><source></source><translation>Cancelled.</translation></message>
    <message id="error.op.destinationExists"><source></source><translation>An item with this name is already there.</translation></message>
    <message id="error.op.destinationInsideSource"><source></source><translation>A folder can’t be placed inside itself.</translation></message>
    <message id="error.op.destinationMissing"><source></source><translation>The destination folder no longer exists.</translation></message>
    <message id="error.op.invalidName.containsNull"><source></source><translation>A name can’t contain this character.</translation></message>
    <message id="error.op.invalidName.containsSlash"><source></source><translation>A name can’t contain “/”.</translation></message>
    <message id="error.op.invalidName.empty"><source></source><translation>Type a name.</translation></message>
    <message id="error.op.invalidName.reserved"><source></source><translation>This name is reserved.</translation></message>
    <message id="error.op.invalidName.tooLong"><source></source><translation>This name is too long.</translation></message>
    <message id="error.op.invalidName.windowsCharacters"><source></source><translation>Windows can’t use a name with \ / : * ? " &lt; &gt; or | in it.</translation></message>
    <message id="error.op.metadataNotPreserved"><source></source><translation>Not all attributes could be carried over, so the copy was not kept.</translation></message>
    <message id="error.op.noSpace"><source></source><translation>There is not enough space.</translation></message>
    <message id="error.op.partialCopyLeftBehind"><source></source><translation>An unfinished copy named “{1}” could not be removed.</translation></message>
    <message id="error.op.permissionDenied"><source></source><translation>You don’t have permission to do this.</translation></message>
    <message id="error.op.posix"><source></source><translation>The system reported: {1} ({2}).</translation></message>
    <message id="error.op.readOnlyVolume"><source></source><translation>The volume is read-only.</translation></message>
    <message id="error.op.sameLocation"><source></source><translation>The item is already there.</translation></message>
    <message id="error.op.sourceChanged"><source></source><translation>The item changed while it was being copied.</translation></message>
    <message id="error.op.sourceMissing"><source></source><translation>The item no longer exists.</translation></message>
    <message id="error.op.sourceRemovalFailed"><source></source><translation>The item was copied, but the original could not be removed.</translation></message>
    <message id="error.op.system"><source></source><translation>The system reported an error ({1}, {2}).</translation></message>
    <message id="error.op.trashUnavailable"><source></source><translation>There is no trash on this volume.</translation></message>
    <message id="error.op.verificationFailed"><source></source><translation>The copy differs from the original, so it was not kept.</translation></message>
    <message id="format.dateAndTime"><source></source><translation>{1}, {2}</translation></message>
    <message id="inhibit.why"><source></source><translation>Files are being copied or moved</translation></message>
    <message id="kind.other"><source></source><translation>Special file</translation></message>
    <message id="kind.symlink"><source></source><translation>Link</translation></message>
    <message id="kind.symlinkBroken"><source></source><translation>Broken link</translation></message>
    <message id="kind.symlinkInaccessible"><source></source><translation>Link that can’t be followed</translation></message>
    <message id="kind.symlinkLoop"><source></source><translation>Link that leads to itself</translation></message>
    <message id="knownFolder.desktop"><source></source><translation>Desktop</translation></message>
    <message id="knownFolder.documents"><source></source><translation>Documents</translation></message>
    <message id="knownFolder.downloads"><source></source><translation>Downloads</translation></message>
    <message id="knownFolder.music"><source></source><translation>Music</translation></message>
    <message id="knownFolder.pictures"><source></source><translation>Pictures</translation></message>
    <message id="knownFolder.videos"><source></source><translation>Videos</translation></message>
    <message id="menu.checkForUpdates"><source></source><translation>Check for updates…</translation></message>
    <message id="name.copySuffix"><source></source><translation> - Copy</translation></message>
    <message id="new.folder"><source></source><translation>New folder</translation></message>
    <message id="new.textDocument"><source></source><translation>New text document</translation></message>
    <message id="open.error.applicationGone"><source></source><translation>“{1}” is no longer installed.</translation></message>
    <message id="open.error.brokenLink"><source></source><translation>“{1}” leads to something that is no longer there.</translation></message>
    <message id="open.error.defaultNotSaved"><source></source><translation>“{1}” could not be made the default application: {2}.</translation></message>
    <message id="open.error.denied"><source></source><translation>You don’t have permission to open “{1}”.</translation></message>
    <message id="open.error.failed"><source></source><translation>“{1}” could not be opened: {2}.</translation></message>
    <message id="open.error.missing"><source></source><translation>“{1}” no longer exists.</translation></message>
    <message id="open.error.noApplication"><source></source><translation>No application is set to open “{1}”.</translation></message>
    <message id="open.error.noTerminal"><source></source><translation>No terminal is installed.</translation></message>
    <message id="open.error.notExecutable"><source></source><translation>“{1}” is a program, but it is not marked as executable.</translation></message>
    <message id="open.error.several" numerus="yes"><source></source><translation><numerusform>{1}</numerusform><numerusform>{n} items could not be opened. {1}</numerusform></translation></message>
    <message id="open.error.special"><source></source><translation>“{1}” is a special file that can’t be opened.</translation></message>
    <message id="open.error.terminal"><source></source><translation>A terminal could not be opened in “{1}”: {2}.</translation></message>
    <message id="overlay.allowAccess"><source></source><translation>Allow access…</translation></message>
    <message id="overlay.clearSearch"><source></source><translation>Clear search</translation></message>
    <message id="overlay.empty.title"><source></source><translation>This folder is empty</translation></message>
    <message id="overlay.failed.message"><source></source><translation>{1}</translation></message>
    <message id="overlay.failed.title"><source></source><translation>This folder can’t be shown</translation></message>
    <message id="overlay.goHome"><source></source><translation>Go to Home</translation></message>
    <message id="overlay.goUp"><source></source><translation>Go to the folder above</translation></message>
    <message id="overlay.invalidated.message"><source></source><translation>It was moved, renamed or deleted.</translation></message>
    <message id="overlay.invalidated.title"><source></source><translation>This folder is gone</translation></message>
    <message id="overlay.noLocation.message"><source></source><translation>Choose a folder on the left or type an address above.</translation></message>
    <message id="overlay.noLocation.title"><source></source><translation>Nothing to show</translation></message>
    <message id="overlay.noMatch.message"><source></source><translation>Only names are searched.</translation></message>
    <message id="overlay.noMatch.title"><source></source><translation>No items match “{1}”</translation></message>
    <message id="overlay.permissionDenied.message"><source></source><translation>You don’t have permission to see what is in “{1}”. Allow access to this folder, or ask its owner to share it with you.</translation></message>
    <message id="overlay.permissionDenied.title"><source></source><translation>Ombrel can’t open this folder yet</translation></message>
    <message id="overlay.tryAgain"><source></source><translation>Try again</translation></message>
    <message id="overlay.volumeUnavailable.message"><source></source><translation>Connect it again and the folder will come back.</translation></message>
    <message id="overlay.volumeUnavailable.title"><source></source><translation>This volume is not connected</translation></message>
    <message id="path.invalid"><source></source><translation>This is not a valid address.</translation></message>
    <message id="path.relativeWithoutBase"><source></source><translation>Type a full path. On Home there is no folder to start from.</translation></message>
    <message id="path.windowsPath"><source></source><translation>Windows drive and network addresses can’t be opened here.</translation></message>
    <message id="preset.mac"><source></source><translation>Mac style</translation></message>
    <message id="preset.windows"><source></source><translation>Windows style</translation></message>
    <message id="progress.aboutHours" numerus="yes"><source></source><translation><numerusform>About {n} hour {1} min</numerusform><numerusform>About {n} hours {1} min</numerusform></translation></message>
    <message id="progress.aboutMinutes" numerus="yes"><source></source><translation><numerusform>About {n} minute</numerusform><numerusform>About {n} minutes</numerusform></translation></message>
    <message id="progress.aboutSeconds" numerus="yes"><source></source><translation><numerusform>About {n} second</numerusform><numerusform>About {n} seconds</numerusform></translation></message>
    <message id="progress.calculating"><source></source><translation>Calculating…</translation></message>
    <message id="progress.error.applyToAll"><source></source><translation>Do this for the other errors too</translation></message>
    <message id="progress.error.denied"><source></source><translation>No permission for this item</translation></message>
    <message id="progress.error.noSpace"><source></source><translation>Not enough space</translation></message>
    <message id="progress.error.other"><source></source><translation>This item could not be handled</translation></message>
    <message id="progress.error.retry"><source></source><translation>Try again</translation></message>
    <message id="progress.error.skip"><source></source><translation>Skip</translation></message>
    <message id="progress.error.trash"><source></source><translation>This item can’t go to the trash</translation></message>
    <message id="progress.perSecond"><source></source><translation>/s</translation></message>
    <message id="progress.phase.copy"><source></source><translation>Copying</translation></message>
    <message id="progress.phase.delete"><source></source><translation>Deleting</translation></message>
    <message id="progress.phase.prepare"><source></source><translation>Preparing</translation></message>
    <message id="progress.phase.removeSource"><source></source><translation>Removing the originals</translation></message>
    <message id="progress.phase.trash"><source></source><translation>Moving to trash</translation></message>
    <message id="progress.phase.verify"><source></source><translation>Checking the copy</translation></message>
    <message id="progress.title.compress" numerus="yes"><source></source><translation><numerusform>Compressing {n} item from {1}</numerusform><numerusform>Compressing {n} items from {1}</numerusform></translation></message>
    <message id="progress.title.copy" numerus="yes"><source></source><translation><numerusform>Copying {n} item from {1} to {2}</numerusform><numerusform>Copying {n} items from {1} to {2}</numerusform></translation></message>
    <message id="progress.title.delete" numerus="yes"><source></source><translation><numerusform>Deleting {n} item from {1}</numerusform><numerusform>Deleting {n} items from {1}</numerusform></translation></message>
    <message id="progress.title.extract" numerus="yes"><source></source><translation><numerusform>Extracting {n} archive to {1}</numerusform><numerusform>Extracting {n} archives to {1}</numerusform></translation></message>
    <message id="progress.title.move" numerus="yes"><source></source><translation><numerusform>Moving {n} item from {1} to {2}</numerusform><numerusform>Moving {n} items from {1} to {2}</numerusform></translation></message>
    <message id="progress.title.newFile"><source></source><translation>Making a file in {1}</translation></message>
    <message id="progress.title.newFolder"><source></source><translation>Making a folder in {1}</translation></message>
    <message id="progress.title.rename" numerus="yes"><source></source><translation><numerusform>Renaming {n} item in {1}</numerusform><numerusform>Renaming {n} items in {1}</numerusform></translation></message>
    <message id="progress.title.trash" numerus="yes"><source></source><translation><numerusform>Moving {n} item from {1} to the trash</numerusform><numerusform>Moving {n} items from {1} to the trash</numerusform></translation></message>
    <message id="progress.waiting"><source></source><translation>Waiting for: {1}</translation></message>
    <message id="redo.title"><source></source><translation>Redo {1}</translation></message>
    <message id="report.done.compress" numerus="yes"><source></source><translation><numerusform>{n} item was compressed.</numerusform><numerusform>{n} items were compressed.</numerusform></translation></message>
    <message id="report.done.copy" numerus="yes"><source></source><translation><numerusform>{n} item was copied.</numerusform><numerusform>{n} items were copied.</numerusform></translation></message>
    <message id="report.done.delete" numerus="yes"><source></source><translation><numerusform>{n} item was deleted.</numerusform><numerusform>{n} items were deleted.</numerusform></translation></message>
    <message id="report.done.extract" numerus="yes"><source></source><translation><numerusform>{n} archive was extracted.</numerusform><numerusform>{n} archives were extracted.</numerusform></translation></message>
    <message id="report.done.move" numerus="yes"><source></source><translation><numerusform>{n} item was moved.</numerusform><numerusform>{n} items were moved.</numerusform></translation></message>
    <message id="report.done.newFile" numerus="yes"><source></source><translation><numerusform>{n} file was made.</numerusform><numerusform>{n} files were made.</numerusform></translation></message>
    <message id="report.done.newFolder" numerus="yes"><source></source><translation><numerusform>{n} folder was made.</numerusform><numerusform>{n} folders were made.</numerusform></translation></message>
    <message id="report.done.rename" numerus="yes"><source></source><translation><numerusform>{n} item was renamed.</numerusform><numerusform>{n} items were renamed.</numerusform></translation></message>
    <message id="report.done.trash" numerus="yes"><source></source><translation><numerusform>{n} item was moved to the trash.</numerusform><numerusform>{n} items were moved to the trash.</numerusform></translation></message>
    <message id="report.item.done"><source></source><translation>Done.</translation></message>
    <message id="report.item.doneAs"><source></source><translation>Done, as “{1}”.</translation></message>
    <message id="report.item.skipped"><source></source><translation>Skipped.</translation></message>
    <message id="report.item.sourceKept"><source></source><translation>The item was copied, but the original was kept: {1}</translation></message>
    <message id="report.nothingToDo"><source></source><translation>There was nothing to do.</translation></message>
    <message id="report.part.compress" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was compressed.</numerusform><numerusform>{1} of {n} items were compressed.</numerusform></translation></message>
    <message id="report.part.copy" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was copied.</numerusform><numerusform>{1} of {n} items were copied.</numerusform></translation></message>
    <message id="report.part.delete" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was deleted.</numerusform><numerusform>{1} of {n} items were deleted.</numerusform></translation></message>
    <message id="report.part.extract" numerus="yes"><source></source><translation><numerusform>{1} of {n} archive was extracted.</numerusform><numerusform>{1} of {n} archives were extracted.</numerusform></translation></message>
    <message id="report.part.move" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was moved.</numerusform><numerusform>{1} of {n} items were moved.</numerusform></translation></message>
    <message id="report.part.newFile" numerus="yes"><source></source><translation><numerusform>{1} of {n} file was made.</numerusform><numerusform>{1} of {n} files were made.</numerusform></translation></message>
    <message id="report.part.newFolder" numerus="yes"><source></source><translation><numerusform>{1} of {n} folder was made.</numerusform><numerusform>{1} of {n} folders were made.</numerusform></translation></message>
    <message id="report.part.rename" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was renamed.</numerusform><numerusform>{1} of {n} items were renamed.</numerusform></translation></message>
    <message id="report.part.trash" numerus="yes"><source></source><translation><numerusform>{1} of {n} item was moved to the trash.</numerusform><numerusform>{1} of {n} items were moved to the trash.</numerusform></translation></message>
    <message id="settings.locations.reauthorize"><source></source><translation>Allow again…</translation></message>
    <message id="settings.locations.remove"><source></source><translation>Remove</translation></message>
    <message id="settings.storeDamaged"><source></source><translation>The settings could not be understood. The defaults are used, and the old file is kept.</translation></message>
    <message id="settings.storeFailed"><source></source><translation>The settings could not be saved.</translation></message>
    <message id="settings.storeUnreadable"><source></source><translation>The settings could not be read. The defaults are used.</translation></message>
    <message id="settings.updates.automaticChecks"><source></source><translation>Check for updates automatically</translation></message>
    <message id="settings.updates.automaticDownloads"><source></source><translation>Download updates automatically</translation></message>
    <message id="settings.updates.beta"><source></source><translation>Include beta versions</translation></message>
    <message id="settings.updates.lastCheck"><source></source><translation>Last check: {1}</translation></message>
    <message id="settings.updates.neverChecked"><source></source><translation>Never checked</translation></message>
    <message id="settings.updates.privacy"><source></source><translation>Checking sends the version and the language, nothing else.</translation></message>
    <message id="size.bytes" numerus="yes"><source></source><translation><numerusform>{n} byte</numerusform><numerusform>{n} bytes</numerusform></translation></message>
    <message id="size.exabytes"><source></source><translation>{1} EB</translation></message>
    <message id="size.gigabytes"><source></source><translation>{1} GB</translation></message>
    <message id="size.kilobytes"><source></source><translation>{1} KB</translation></message>
    <message id="size.megabytes"><source></source><translation>{1} MB</translation></message>
    <message id="size.petabytes"><source></source><translation>{1} PB</translation></message>
    <message id="size.terabytes"><source></source><translation>{1} TB</translation></message>
    <message id="trash.unavailable.holdsTrash"><source></source><translation>The trash or the home folder lies inside this folder.</translation></message>
    <message id="trash.unavailable.inTrash"><source></source><translation>The item is in the trash already.</translation></message>
    <message id="trash.unavailable.isHome"><source></source><translation>This is the home folder.</translation></message>
    <message id="trash.unavailable.isMountPoint"><source></source><translation>A volume is connected at this folder.</translation></message>
    <message id="trash.unavailable.isTrash"><source></source><translation>This folder is the trash itself.</translation></message>
    <message id="trash.unavailable.noPermission"><source></source><translation>You don’t have permission to make a trash on this volume.</translation></message>
    <message id="trash.unavailable.notSupported"><source></source><translation>This volume can’t hold a trash.</translation></message>
    <message id="trash.unavailable.readOnly"><source></source><translation>The volume is read-only.</translation></message>
    <message id="trash.unavailable.unsafe"><source></source><translation>The trash on this volume is not safe to use.</translation></message>
    <message id="trash.unreadable"><source></source><translation>The trash here could not be read.</translation></message>
    <message id="trash.unrecorded"><source></source><translation>There is no record of where this item was.</translation></message>
    <message id="trash.unrecordedKept"><source></source><translation>This item was left in the trash, because there is no record of where it was.</translation></message>
    <message id="type.archive"><source></source><translation>Archive</translation></message>
    <message id="type.csv"><source></source><translation>CSV table</translation></message>
    <message id="type.dll"><source></source><translation>Windows library</translation></message>
    <message id="type.dmg"><source></source><translation>Disk image</translation></message>
    <message id="type.excel"><source></source><translation>Excel workbook</translation></message>
    <message id="type.exe"><source></source><translation>Windows program</translation></message>
    <message id="type.extFile"><source></source><translation>{1} file</translation></message>
    <message id="type.file"><source></source><translation>File</translation></message>
    <message id="type.folder"><source></source><translation>Folder</translation></message>
    <message id="type.html"><source></source><translation>HTML document</translation></message>
    <message id="type.macApp"><source></source><translation>Mac application</translation></message>
    <message id="type.msi"><source></source><translation>Windows installer</translation></message>
    <message id="type.package.application"><source></source><translation>Application</translation></message>
    <message id="type.package.diskImage"><source></source><translation>Disk image</translation></message>
    <message id="type.package.document"><source></source><translation>Document package</translation></message>
    <message id="type.package.framework"><source></source><translation>Framework</translation></message>
    <message id="type.package.installer"><source></source><translation>Installer package</translation></message>
    <message id="type.package.library"><source></source><translation>Media library</translation></message>
    <message id="type.package.plugin"><source></source><translation>Plug-in</translation></message>
    <message id="type.package.project"><source></source><translation>Project package</translation></message>
    <message id="type.package.systemExtension"><source></source><translation>System extension</translation></message>
    <message id="type.package.workflow"><source></source><translation>Workflow</translation></message>
    <message id="type.pdf"><source></source><translation>PDF document</translation></message>
    <message id="type.powerpoint"><source></source><translation>PowerPoint presentation</translation></message>
    <message id="type.rtf"><source></source><translation>Rich text document</translation></message>
    <message id="type.text"><source></source><translation>Text document</translation></message>
    <message id="type.word"><source></source><translation>Word document</translation></message>
    <message id="type.zip"><source></source><translation>ZIP archive</translation></message>
    <message id="ui.about.title"><source></source><translation>About Ombrel</translation></message>
    <message id="ui.about.version"><source></source><translation>Version {1}</translation></message>
    <message id="ui.accessible.address"><source></source><translation>Address</translation></message>
    <message id="ui.accessible.columns"><source></source><translation>Columns</translation></message>
    <message id="ui.accessible.cut"><source></source><translation>cut</translation></message>
    <message id="ui.accessible.files"><source></source><translation>Files</translation></message>
    <message id="ui.accessible.tabs"><source></source><translation>Tabs</translation></message>
    <message id="ui.accessible.tree"><source></source><translation>Folders</translation></message>
    <message id="ui.address.collapsed"><source></source><translation>Folders further up</translation></message>
    <message id="ui.address.edit"><source></source><translation>Edit address</translation></message>
    <message id="ui.address.foldersIn"><source></source><translation>Folders in {1}</translation></message>
    <message id="ui.address.noFolders"><source></source><translation>No folders here</translation></message>
    <message id="ui.address.noRecent"><source></source><translation>No recent addresses</translation></message>
    <message id="ui.address.reading"><source></source><translation>Reading folders…</translation></message>
    <message id="ui.address.recent"><source></source><translation>Recent addresses</translation></message>
    <message id="ui.address.suggestions"><source></source><translation>Suggestions</translation></message>
    <message id="ui.bar.details"><source></source><translation>Details</translation></message>
    <message id="ui.bar.more"><source></source><translation>More</translation></message>
    <message id="ui.bar.new"><source></source><translation>New</translation></message>
    <message id="ui.bar.sort"><source></source><translation>Sort</translation></message>
    <message id="ui.bar.view"><source></source><translation>View</translation></message>
    <message id="ui.chooser.always"><source></source><translation>Always use it for files like this</translation></message>
    <message id="ui.chooser.filter"><source></source><translation>Search applications</translation></message>
    <message id="ui.chooser.list"><source></source><translation>Applications</translation></message>
    <message id="ui.chooser.looking"><source></source><translation>Looking for applications…</translation></message>
    <message id="ui.chooser.many" numerus="yes"><source></source><translation><numerusform>Open {n} item with</numerusform><numerusform>Open {n} items with</numerusform></translation></message>
    <message id="ui.chooser.noMatch"><source></source><translation>No application matches “{1}”.</translation></message>
    <message id="ui.chooser.none"><source></source><translation>No applications are installed.</translation></message>
    <message id="ui.chooser.one"><source></source><translation>Open “{1}” with</translation></message>
    <message id="ui.chooser.others"><source></source><translation>Other applications</translation></message>
    <message id="ui.chooser.recommended"><source></source><translation>Recommended</translation></message>
    <message id="ui.column.dateModified"><source></source><translation>Date modified</translation></message>
    <message id="ui.column.folder"><source></source><translation>Folder</translation></message>
    <message id="ui.column.name"><source></source><translation>Name</translation></message>
    <message id="ui.column.size"><source></source><translation>Size</translation></message>
    <message id="ui.column.type"><source></source><translation>Type</translation></message>
    <message id="ui.columns.fitAll"><source></source><translation>Fit all columns</translation></message>
    <message id="ui.columns.fitThis"><source></source><translation>Fit this column</translation></message>
    <message id="ui.columns.reset"><source></source><translation>Reset columns</translation></message>
    <message id="ui.command.back"><source></source><translation>Back</translation></message>
    <message id="ui.command.cancelCut"><source></source><translation>Cancel cut</translation></message>
    <message id="ui.command.closeTab"><source></source><translation>Close tab</translation></message>
    <message id="ui.command.compress"><source></source><translation>Compress to ZIP file</translation></message>
    <message id="ui.command.copy"><source></source><translation>Copy</translation></message>
    <message id="ui.command.copyPath"><source></source><translation>Copy path</translation></message>
    <message id="ui.command.createShortcut"><source></source><translation>Create desktop shortcut</translation></message>
    <message id="ui.command.cut"><source></source><translation>Cut</translation></message>
    <message id="ui.command.deletePermanently"><source></source><translation>Delete permanently</translation></message>
    <message id="ui.command.dissolveFolder"><source></source><translation>Dissolve folder</translation></message>
    <message id="ui.command.extract"><source></source><translation>Extract</translation></message>
    <message id="ui.command.focusAddress"><source></source><translation>Type an address</translation></message>
    <message id="ui.command.focusSearch"><source></source><translation>Search</translation></message>
    <message id="ui.command.forward"><source></source><translation>Forward</translation></message>
    <message id="ui.command.moveIntoNewFolder"><source></source><translation>Move into new folder</translation></message>
    <message id="ui.command.moveToTrash"><source></source><translation>Move to trash</translation></message>
    <message id="ui.command.newFile"><source></source><translation>New text document</translation></message>
    <message id="ui.command.newFolder"><source></source><translation>New folder</translation></message>
    <message id="ui.command.newTab"><source></source><translation>New tab</translation></message>
    <message id="ui.command.newWindow"><source></source><translation>New window</translation></message>
    <message id="ui.command.open"><source></source><translation>Open</translation></message>
    <message id="ui.command.openContainingFolder"><source></source><translation>Open containing folder</translation></message>
    <message id="ui.command.openInNewTab"><source></source><translation>Open in new tab</translation></message>
    <message id="ui.command.openInNewWindow"><source></source><translation>Open in new window</translation></message>
    <message id="ui.command.openInTerminal"><source></source><translation>Open in terminal</translation></message>
    <message id="ui.command.openWith"><source></source><translation>Open with</translation></message>
    <message id="ui.command.otherApplication"><source></source><translation>Other application…</translation></message>
    <message id="ui.command.paste"><source></source><translation>Paste</translation></message>
    <message id="ui.command.pin"><source></source><translation>Pin to quick access</translation></message>
    <message id="ui.command.quickLook"><source></source><translation>Quick look</translation></message>
    <message id="ui.command.redo"><source></source><translation>Redo</translation></message>
    <message id="ui.command.refresh"><source></source><translation>Refresh</translation></message>
    <message id="ui.command.rename"><source></source><translation>Rename</translation></message>
    <message id="ui.command.selectAll"><source></source><translation>Select all</translation></message>
    <message id="ui.command.showInfo"><source></source><translation>Properties</translation></message>
    <message id="ui.command.toggleDetailsPane"><source></source><translation>Details pane</translation></message>
    <message id="ui.command.undo"><source></source><translation>Undo</translation></message>
    <message id="ui.command.unpin"><source></source><translation>Unpin from quick access</translation></message>
    <message id="ui.command.up"><source></source><translation>Up</translation></message>
    <message id="ui.drop.cancel"><source></source><translation>Cancel</translation></message>
    <message id="ui.drop.copyHere"><source></source><translation>Copy here</translation></message>
    <message id="ui.drop.copyTo"><source></source><translation>Copy to {1}</translation></message>
    <message id="ui.drop.intoItself"><source></source><translation>Can’t move a folder into itself</translation></message>
    <message id="ui.drop.moveHere"><source></source><translation>Move here</translation></message>
    <message id="ui.drop.moveTo"><source></source><translation>Move to {1}</translation></message>
    <message id="ui.drop.readOnly"><source></source><translation>This place is read-only</translation></message>
    <message id="ui.folderOptions.accept"><source></source><translation>OK</translation></message>
    <message id="ui.folderOptions.checkBoxes"><source></source><translation>Item check boxes</translation></message>
    <message id="ui.folderOptions.fullPath"><source></source><translation>Full path in the title</translation></message>
    <message id="ui.folderOptions.hidden"><source></source><translation>Hidden things</translation></message>
    <message id="ui.folderOptions.hideExtensions"><source></source><translation>Hide endings of known file types</translation></message>
    <message id="ui.folderOptions.hideProtected"><source></source><translation>Hide protected system items</translation></message>
    <message id="ui.folderOptions.restore"><source></source><translation>Restore defaults</translation></message>
    <message id="ui.folderOptions.showHidden"><source></source><translation>Show hidden items</translation></message>
    <message id="ui.folderOptions.statusBar"><source></source><translation>Status bar</translation></message>
    <message id="ui.folderOptions.title"><source></source><translation>Folder options</translation></message>
    <message id="ui.folderOptions.window"><source></source><translation>Window</translation></message>
    <message id="ui.home.addLocation"><source></source><translation>Add a folder…</translation></message>
    <message id="ui.home.folderCount" numerus="yes"><source></source><translation><numerusform>{n} folder</numerusform><numerusform>{n} folders</numerusform></translation></message>
    <message id="ui.home.locations"><source></source><translation>Locations</translation></message>
    <message id="ui.home.moreActions"><source></source><translation>More</translation></message>
    <message id="ui.home.noLocations"><source></source><translation>No locations yet. Add a folder that Ombrel may open.</translation></message>
    <message id="ui.home.quickAccess"><source></source><translation>Quick access</translation></message>
    <message id="ui.home.title"><source></source><translation>Home</translation></message>
    <message id="ui.home.volumeCount" numerus="yes"><source></source><translation><numerusform>{n} volume</numerusform><numerusform>{n} volumes</numerusform></translation></message>
    <message id="ui.home.volumes"><source></source><translation>Volumes</translation></message>
    <message id="ui.key.backspace"><source></source><translation>Backspace</translation></message>
    <message id="ui.key.control"><source></source><translation>Ctrl</translation></message>
    <message id="ui.key.delete"><source></source><translation>Delete</translation></message>
    <message id="ui.key.enter"><source></source><translation>Enter</translation></message>
    <message id="ui.key.option"><source></source><translation>Alt</translation></message>
    <message id="ui.key.shift"><source></source><translation>Shift</translation></message>
    <message id="ui.key.space"><source></source><translation>Space</translation></message>
    <message id="ui.key.super"><source></source><translation>Super</translation></message>
    <message id="ui.location.available"><source></source><translation>Available</translation></message>
    <message id="ui.location.needsPermission"><source></source><translation>Needs permission</translation></message>
    <message id="ui.location.remove"><source></source><translation>Remove location</translation></message>
    <message id="ui.location.unavailable"><source></source><translation>Not available</translation></message>
    <message id="ui.menu.sortBy"><source></source><translation>Sort by</translation></message>
    <message id="ui.more.about"><source></source><translation>About Ombrel</translation></message>
    <message id="ui.more.folderOptions"><source></source><translation>Folder options…</translation></message>
    <message id="ui.more.settings"><source></source><translation>Settings…</translation></message>
    <message id="ui.new.folder"><source></source><translation>Folder</translation></message>
    <message id="ui.new.textDocument"><source></source><translation>Text document</translation></message>
    <message id="ui.onboarding.back"><source></source><translation>Back</translation></message>
    <message id="ui.onboarding.folders.caption"><source></source><translation>They are pinned to quick access. You can change this at any time.</translation></message>
    <message id="ui.onboarding.folders.title"><source></source><translation>Which folders do you use most?</translation></message>
    <message id="ui.onboarding.keys.caption"><source></source><translation>Choose the keyboard that feels like home. You can change it later in Settings.</translation></message>
    <message id="ui.onboarding.keys.title"><source></source><translation>Which keys do you prefer?</translation></message>
    <message id="ui.onboarding.next"><source></source><translation>Next</translation></message>
    <message id="ui.onboarding.start"><source></source><translation>Start</translation></message>
    <message id="ui.onboarding.step"><source></source><translation>Step {1} of {2}</translation></message>
    <message id="ui.onboarding.title"><source></source><translation>Welcome to Ombrel</translation></message>
    <message id="ui.onboarding.welcome"><source></source><translation>A calm place for your files.</translation></message>
    <message id="ui.pill.available"><source></source><translation>Available</translation></message>
    <message id="ui.pill.cancelled"><source></source><translation>Cancelled</translation></message>
    <message id="ui.pill.failed"><source></source><translation>Failed</translation></message>
    <message id="ui.pill.larger"><source></source><translation>Larger</translation></message>
    <message id="ui.pill.needsPermission"><source></source><translation>Needs permission</translation></message>
    <message id="ui.pill.newer"><source></source><translation>Newer</translation></message>
    <message id="ui.pill.notAvailable"><source></source><translation>Not available</translation></message>
    <message id="ui.pill.originalKept"><source></source><translation>Original kept</translation></message>
    <message id="ui.pill.skipped"><source></source><translation>Skipped</translation></message>
    <message id="ui.preset.folderAbove"><source></source><translation>Folder above</translation></message>
    <message id="ui.preset.opensFirst"><source></source><translation>{1} opens, {2} renames</translation></message>
    <message id="ui.preset.renamesFirst"><source></source><translation>{1} renames, {2} opens</translation></message>
    <message id="ui.progress.cancel"><source></source><translation>Cancel</translation></message>
    <message id="ui.progress.cancelling"><source></source><translation>Cancelling…</translation></message>
    <message id="ui.progress.complete"><source></source><translation>{1}% complete</translation></message>
    <message id="ui.progress.counted"><source></source><translation>{1}, {2} of {3}</translation></message>
    <message id="ui.progress.currentItem"><source></source><translation>Current item</translation></message>
    <message id="ui.progress.deletePermanently"><source></source><translation>Delete permanently…</translation></message>
    <message id="ui.progress.done"><source></source><translation>Done</translation></message>
    <message id="ui.progress.fewer"><source></source><translation>Fewer details</translation></message>
    <message id="ui.progress.graph"><source></source><translation>{1}, {2}% done</translation></message>
    <message id="ui.progress.itemsRemaining"><source></source><translation>Items remaining</translation></message>
    <message id="ui.progress.more"><source></source><translation>More details</translation></message>
    <message id="ui.progress.of"><source></source><translation>{1} of {2}</translation></message>
    <message id="ui.progress.openFolder"><source></source><translation>Open “{1}” in a new tab</translation></message>
    <message id="ui.progress.pause"><source></source><translation>Pause</translation></message>
    <message id="ui.progress.paused"><source></source><translation>Paused, {1}%</translation></message>
    <message id="ui.progress.preparing" numerus="yes"><source></source><translation><numerusform>Preparing, {n} item found</numerusform><numerusform>Preparing, {n} items found</numerusform></translation></message>
    <message id="ui.progress.remaining"><source></source><translation>{1} ({2})</translation></message>
    <message id="ui.progress.resume"><source></source><translation>Resume</translation></message>
    <message id="ui.progress.startNow"><source></source><translation>Start now</translation></message>
    <message id="ui.progress.timeRemaining"><source></source><translation>Time remaining</translation></message>
    <message id="ui.progress.verifying"><source></source><translation>{1}%, checking the copy</translation></message>
    <message id="ui.progress.waitingForAnswer"><source></source><translation>Waiting for your answer</translation></message>
    <message id="ui.progress.window.allPaused"><source></source><translation>Paused</translation></message>
    <message id="ui.progress.window.jobs" numerus="yes"><source></source><translation><numerusform>{1}, {n} job</numerusform><numerusform>{1}, {n} jobs</numerusform></translation></message>
    <message id="ui.quickLook.cut"><source></source><translation>Only the first {1} are shown.</translation></message>
    <message id="ui.quickLook.position"><source></source><translation>{1} of {2}</translation></message>
    <message id="ui.rename.notOnWindows"><source></source><translation>Windows can’t use this name.</translation></message>
    <message id="ui.report.close"><source></source><translation>Close</translation></message>
    <message id="ui.report.copy"><source></source><translation>Copy report</translation></message>
    <message id="ui.search.clear"><source></source><translation>Clear</translation></message>
    <message id="ui.search.in"><source></source><translation>Search {1}</translation></message>
    <message id="ui.search.limit"><source></source><translation>Showing the first 10,000 matches</translation></message>
    <message id="ui.search.openFolder"><source></source><translation>Open a folder to search</translation></message>
    <message id="ui.search.results"><source></source><translation>Results for “{1}” in {2}</translation></message>
    <message id="ui.settings.checkNow"><source></source><translation>Check now</translation></message>
    <message id="ui.settings.compactRows"><source></source><translation>Compact rows</translation></message>
    <message id="ui.settings.confirmTrash"><source></source><translation>Ask before moving to trash</translation></message>
    <message id="ui.settings.desktopLanguage"><source></source><translation>Same as the desktop</translation></message>
    <message id="ui.settings.detailsPane"><source></source><translation>Show details pane</translation></message>
    <message id="ui.settings.folderOptions"><source></source><translation>Folder options…</translation></message>
    <message id="ui.settings.general"><source></source><translation>General</translation></message>
    <message id="ui.settings.keyboard"><source></source><translation>Keyboard</translation></message>
    <message id="ui.settings.language"><source></source><translation>Language</translation></message>
    <message id="ui.settings.locations"><source></source><translation>Locations</translation></message>
    <message id="ui.settings.locations.addFolder"><source></source><translation>Add a folder…</translation></message>
    <message id="ui.settings.locations.added"><source></source><translation>Added {1}</translation></message>
    <message id="ui.settings.locations.caption"><source></source><translation>Folders that Ombrel may open. Removing a folder here never deletes anything in it.</translation></message>
    <message id="ui.settings.locations.comesBack"><source></source><translation>A location that is not available comes back by itself when its volume is connected.</translation></message>
    <message id="ui.settings.locations.none"><source></source><translation>No locations yet. Add a folder that Ombrel may open.</translation></message>
    <message id="ui.settings.nextStart"><source></source><translation>Takes effect when you start Ombrel again.</translation></message>
    <message id="ui.settings.title"><source></source><translation>Settings</translation></message>
    <message id="ui.settings.updates"><source></source><translation>Updates</translation></message>
    <message id="ui.sort.ascending"><source></source><translation>Ascending</translation></message>
    <message id="ui.sort.descending"><source></source><translation>Descending</translation></message>
    <message id="ui.sort.foldersFirst"><source></source><translation>Folders first</translation></message>
    <message id="ui.status.failed"><source></source><translation>Can’t show this folder</translation></message>
    <message id="ui.status.home"><source></source><translation>{1}, {2}, {3}</translation></message>
    <message id="ui.status.items" numerus="yes"><source></source><translation><numerusform>{n} item</numerusform><numerusform>{n} items</numerusform></translation></message>
    <message id="ui.status.jobs" numerus="yes"><source></source><translation><numerusform>{n} job, {1}%</numerusform><numerusform>{n} jobs, {1}%</numerusform></translation></message>
    <message id="ui.status.jumpTo"><source></source><translation>Jump to: {1}</translation></message>
    <message id="ui.status.loading" numerus="yes"><source></source><translation><numerusform>Loading, {n} item so far</numerusform><numerusform>Loading, {n} items so far</numerusform></translation></message>
    <message id="ui.status.locations" numerus="yes"><source></source><translation><numerusform>{n} location</numerusform><numerusform>{n} locations</numerusform></translation></message>
    <message id="ui.status.quickAccess" numerus="yes"><source></source><translation><numerusform>{n} quick access folder</numerusform><numerusform>{n} quick access folders</numerusform></translation></message>
    <message id="ui.status.searchLimit"><source></source><translation>Showing the first 10,000 matches</translation></message>
    <message id="ui.status.searching" numerus="yes"><source></source><translation><numerusform>Searching, {n} match so far</numerusform><numerusform>Searching, {n} matches so far</numerusform></translation></message>
    <message id="ui.status.selected" numerus="yes"><source></source><translation><numerusform>{n} item selected</numerusform><numerusform>{n} items selected</numerusform></translation></message>
    <message id="ui.status.selectedWithSize" numerus="yes"><source></source><translation><numerusform>{n} item selected, {1}</numerusform><numerusform>{n} items selected, {1}</numerusform></translation></message>
    <message id="ui.status.showJobs"><source></source><translation>Show the running jobs</translation></message>
    <message id="ui.status.unreadable" numerus="yes"><source></source><translation><numerusform>{n} item could not be read</numerusform><numerusform>{n} items could not be read</numerusform></translation></message>
    <message id="ui.status.volumes" numerus="yes"><source></source><translation><numerusform>{n} volume</numerusform><numerusform>{n} volumes</numerusform></translation></message>
    <message id="ui.tabs.closeOthers"><source></source><translation>Close other tabs</translation></message>
    <message id="ui.tabs.closeToTheRight"><source></source><translation>Close tabs to the right</translation></message>
    <message id="ui.tabs.duplicate"><source></source><translation>Duplicate tab</translation></message>
    <message id="ui.tabs.scrollBack"><source></source><translation>Earlier tabs</translation></message>
    <message id="ui.tabs.scrollOn"><source></source><translation>Later tabs</translation></message>
    <message id="ui.tooltip.stop"><source></source><translation>Stop</translation></message>
    <message id="ui.tooltip.upTo"><source></source><translation>Up to “{1}”</translation></message>
    <message id="ui.tooltip.withShortcut"><source></source><translation>{1} ({2})</translation></message>
    <message id="ui.tree.loading"><source></source><translation>Loading…</translation></message>
    <message id="ui.view.compactRows"><source></source><translation>Compact rows</translation></message>
    <message id="ui.view.details"><source></source><translation>Details</translation></message>
    <message id="ui.view.extraLargeIcons"><source></source><translation>Extra large icons</translation></message>
    <message id="ui.view.hiddenItems"><source></source><translation>Hidden items</translation></message>
    <message id="ui.view.itemCheckBoxes"><source></source><translation>Item check boxes</translation></message>
    <message id="ui.view.largeIcons"><source></source><translation>Large icons</translation></message>
    <message id="ui.view.mediumIcons"><source></source><translation>Medium icons</translation></message>
    <message id="ui.view.smallIcons"><source></source><translation>Small icons</translation></message>
    <message id="ui.view.statusBar"><source></source><translation>Status bar</translation></message>
    <message id="ui.volume.eject"><source></source><translation>Eject</translation></message>
    <message id="ui.volume.ejecting"><source></source><translation>Ejecting…</translation></message>
    <message id="ui.volume.free"><source></source><translation>{1} free of {2}</translation></message>
    <message id="ui.volume.internal"><source></source><translation>internal</translation></message>
    <message id="ui.volume.network"><source></source><translation>network</translation></message>
    <message id="ui.volume.readOnly"><source></source><translation>read-only</translation></message>
    <message id="ui.volume.removable"><source></source><translation>removable</translation></message>
    <message id="ui.volume.sizeUnknown"><source></source><translation>Size unknown</translation></message>
    <message id="ui.volume.system"><source></source><translation>System</translation></message>
    <message id="undo.action.copy"><source></source><translation>Copy</translation></message>
    <message id="undo.action.delete"><source></source><translation>Delete</translation></message>
    <message id="undo.action.move"><source></source><translation>Move</translation></message>
    <message id="undo.action.new"><source></source><translation>New</translation></message>
    <message id="undo.action.rename"><source></source><translation>Rename</translation></message>
    <message id="undo.title"><source></source><translation>Undo {1}</translation></message>
    <message id="volume.eject.busy"><source></source><translation>“{1}” is still in use. Close the files and programs that use it and try again.</translation></message>
    <message id="volume.eject.failed"><source></source><translation>“{1}” could not be ejected: {2}</translation></message>
    <message id="volume.eject.noAnswer"><source></source><translation>“{1}” could not be ejected because it does not answer.</translation></message>
    <message id="volume.eject.noService"><source></source><translation>The service that ejects volumes is not running.</translation></message>
    <message id="volume.eject.notAuthorized"><source></source><translation>You don’t have permission to eject “{1}”.</translation></message>
    <message id="volume.eject.unknown"><source></source><translation>“{1}” can’t be ejected.</translation></message>
    <message id="volume.readOnlyUnknown"><source></source><translation>read-only state unknown</translation></message>
</context>
</TS>
