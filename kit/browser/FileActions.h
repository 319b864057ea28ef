#pragma once

#include "browser/ArchiveActions.h"
#include "browser/ClipboardActions.h"
#include "browser/CreationActions.h"
#include "browser/DisposalActions.h"
#include "browser/DropTargets.h"
#include "browser/FolderActions.h"
#include "browser/HistoryActions.h"
#include "browser/NewFileTemplates.h"
#include "browser/RenameActions.h"
#include "browser/TransferActions.h"

namespace ombrel {

/// All commands of panes that change files, for one window. Main thread only; `services` and the dispatcher
/// that they are bound to are used as long as it lives.
class FileActions {
public:
    explicit FileActions(AppServices& services)
        : clipboard_(services), disposal_(services), creation_(services), renaming_(services),
          history_(services), archives_(services), folders_(services), transfers_(services) {}
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void bindTo(CommandDispatcher& dispatcher) {
        clipboard_.bindTo(dispatcher);
        disposal_.bindTo(dispatcher);
        creation_.bindTo(dispatcher);
        renaming_.bindTo(dispatcher);
        history_.bindTo(dispatcher);
        archives_.bindTo(dispatcher);
        folders_.bindTo(dispatcher);
    }

    [[nodiscard]] const ClipboardActions& clipboard() const noexcept { return clipboard_; }
    [[nodiscard]] const CreationActions& creation() const noexcept { return creation_; }
    [[nodiscard]] const RenameActions& renaming() const noexcept { return renaming_; }
    [[nodiscard]] const TransferActions& transfers() const noexcept { return transfers_; }
    /// The kinds of new files for the menu.
    [[nodiscard]] NewFileTemplates& templates() noexcept { return templates_; }
    /// What is known of the folders that a drag comes over.
    [[nodiscard]] DropTargets& dropTargets() noexcept { return dropTargets_; }

private:
    ClipboardActions clipboard_;
    DisposalActions disposal_;
    CreationActions creation_;
    RenameActions renaming_;
    HistoryActions history_;
    ArchiveActions archives_;
    FolderActions folders_;
    TransferActions transfers_;
    NewFileTemplates templates_;
    DropTargets dropTargets_;
};

} // namespace ombrel
