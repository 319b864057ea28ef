#pragma once

#include "listing/EntryReader.h"
#include "operations/FileOperationError.h"
#include "operations/FolderTrail.h"
#include "operations/ManifestWalk.h"
#include "operations/MetadataSupport.h"
#include "operations/TreeManifest.h"

#include <functional>
#include <optional>

namespace ombrel {

/// Removes a source that was copied, and only what is still as it was copied.
///
/// First the whole source is compared with its manifest: a part that changed, came or went, a folder that
/// nothing may be removed from or that something is mounted on, and nothing at all is removed. Then the
/// entries go, children before their folder, each looked at once more right before. What was left out of the
/// copy stays, with the folders that hold it. Blocking; used once.
class SourceRemoval {
public:
    struct Settings {
        TreeManifest::Likeness likeness = TreeManifest::Likeness::exact;
        /// Compares the contents with the copy once more: for file systems whose times prove nothing.
        bool rechecksContents = false;
        /// The top of the copy, which must still have its name; nothing where that cannot be told.
        std::optional<FileIdentity> copy;
        bool fails = false; ///< a test's wish
    };

    SourceRemoval(const TreeManifest& manifest, Settings settings, std::function<bool()> goesOn);

    /// `sourceChanged`, `sourceRemovalFailed`, `destinationMissing` or `destinationExists` when the copy does
    /// not have its name any more, or, when it was told not to go on, `cancelled`; nothing when the source is
    /// gone.
    [[nodiscard]] std::optional<FileOperationError> remove(POSIX::Place source, POSIX::Place copy);

private:
    using Index = TreeManifest::Index;
    using Answer = std::optional<FileOperationError>;

    [[nodiscard]] Answer checkPlace(POSIX::Place copy) const;
    [[nodiscard]] Answer check();
    [[nodiscard]] Answer checkFolder(Index index);
    [[nodiscard]] Answer checkEntry(Index index);
    [[nodiscard]] Answer checkContents(POSIX::Place copy);
    [[nodiscard]] Answer removeAll();
    [[nodiscard]] Answer removeEntry(Index index);
    [[nodiscard]] Answer removeFolder(Index index);
    [[nodiscard]] Answer enter(Index index);
    [[nodiscard]] bool hasNames(std::size_t expected);
    [[nodiscard]] POSIX::Place place(Index index) const noexcept;

    const TreeManifest& manifest_;
    const Settings settings_;
    const std::function<bool()> goesOn_;
    EntryReader reader_;
    std::optional<FolderTrail> trail_; // from the folder that holds the source
    POSIX::Place source_{};
};

} // namespace ombrel
