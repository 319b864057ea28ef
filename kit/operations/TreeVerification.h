#pragma once

#include "listing/EntryReader.h"
#include "operations/FolderTrail.h"
#include "operations/ManifestWalk.h"
#include "operations/MetadataSupport.h"
#include "operations/PairChecker.h"
#include "operations/TreeManifest.h"
#include "operations/Verification.h"

#include <functional>
#include <memory>
#include <optional>

namespace ombrel {

/// Compares a source with its copy, entry by entry, and both with what the source was when it was copied:
/// the same names, types, contents and link targets, then permission bits, attributes and access control
/// lists. Blocking; used once.
class TreeVerification {
public:
    /// How contents are compared.
    enum class Contents : std::uint8_t {
        all,
        /// Only those of files whose source is not as it was recorded, or whose copy is not as it was left:
        /// the checker has seen the others.
        changed,
    };
    struct Settings {
        Contents contents = Contents::all;
        TreeManifest::Likeness likeness = TreeManifest::Likeness::exact;
    };

    /// `manifest` is of `source`. All must outlive this. `goesOn` is asked for each entry; when it says no
    /// the answer is `different`.
    TreeVerification(const TreeManifest& manifest, const MetadataSupport& support, PairChecker& checker,
                     Settings settings, std::function<bool()> goesOn);

    [[nodiscard]] Verification verify(POSIX::Place source, POSIX::Place copy);

private:
    using Index = TreeManifest::Index;
    /// Neighbours in one folder.
    struct Files {
        Index first = 0, end = 0;
    };
    static constexpr Index filesPerBatch = 64;

    [[nodiscard]] Verification walk();
    [[nodiscard]] Verification enter(Index index);
    [[nodiscard]] Verification compareEntry(Index index);
    [[nodiscard]] bool openPair();
    [[nodiscard]] Verification addFile(Index index);
    void handOverFiles();
    [[nodiscard]] Verification compareFiles(const FolderPair& folders, Files files,
                                            FilePairComparison& comparison) const;
    [[nodiscard]] bool isAsItWas(Index index, const FileStatus& source, const FileStatus& copy) const;
    [[nodiscard]] bool hasNames(int folder, std::size_t expected);
    [[nodiscard]] POSIX::Place sourcePlace(Index index) const noexcept;
    [[nodiscard]] POSIX::Place copyPlace(Index index) const noexcept;

    const TreeManifest& manifest_;
    const MetadataSupport& support_;
    PairChecker& checker_;
    const Settings settings_;
    const std::function<bool()> goesOn_;
    EntryReader reader_;
    std::optional<FolderTrail> source_, copy_;
    const char* sourceName_ = nullptr;
    const char* copyName_ = nullptr;
    std::shared_ptr<const FolderPair> pair_;
    Files files_; // in the present folder, to be looked at on either thread
};

/// Compares any two trees completely, as it is done after a copy.
[[nodiscard]] Verification verifyTrees(POSIX::Place source, POSIX::Place copy,
                                       const MetadataSupport& support);

} // namespace ombrel
