#pragma once

#include "listing/FileStatus.h"
#include "listing/FileSystemTraits.h"
#include "listing/POSIX.h"
#include "operations/CopyFailure.h"
#include "operations/MetadataSupport.h"
#include "operations/PairChecker.h"
#include "operations/Verification.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace ombrel {

/// Copies the small files of one folder and compares each with its copy at once, while both are open, on the
/// two threads of a checker.
///
/// Only what goes smoothly is copied here: whatever is not plain and small, or fails, is as if it had never
/// been tried, and left to who can ask about it. Made, run and read on one thread; used once.
class SmallFiles {
public:
    struct Settings {
        int source = -1; ///< the two folders, open while this lives
        int copy = -1;
        const FileSystemTraits* target = nullptr;
        MetadataSupport* support = nullptr; ///< learned already, of a driver that does not pretend
    };
    struct File {
        const char* name;
        /// The source as it was when it was copied; nothing when it was not.
        std::optional<FileStatus> copied = {};
    };

    /// What is bigger is not copied here.
    static constexpr std::int64_t largest = std::int64_t{64} << 10;

    /// The names must stay while this lives. `goesOn` is asked before each file, on both threads.
    SmallFiles(const Settings& settings, std::vector<File> files, std::function<bool()> goesOn);

    /// Copies what can be copied; `copied` is told of bytes, on this thread, and answers whether to go on. A
    /// failure says that something stands under a name of a copy that could not be removed. That contents
    /// differ is for the checker to tell.
    [[nodiscard]] CopyResult<void> run(PairChecker& checker,
                                       const std::function<bool(std::int64_t bytes)>& copied);

    [[nodiscard]] const std::vector<File>& files() const noexcept { return files_; }

private:
    [[nodiscard]] Verification copySome(std::size_t most);
    [[nodiscard]] std::optional<Verification> copyOne(File& file, std::byte* buffers);
    [[nodiscard]] std::optional<Verification> fill(int from, const FileStatus& status, int to,
                                                   std::byte* buffers);
    [[nodiscard]] bool isForHere(const FileStatus& status) const noexcept;

    static constexpr std::size_t filesPerReport = 4;

    const Settings settings_;
    std::vector<File> files_;
    const std::function<bool()> goesOn_;
    std::atomic<std::size_t> next_ = 0;   // the first that neither thread has taken
    std::atomic<std::int64_t> bytes_ = 0; // copied and not yet told
    std::atomic<bool> isStopped_ = false;
    std::atomic<int> stuck_ = 0; // why a name could not be removed
};

} // namespace ombrel
