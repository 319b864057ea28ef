#pragma once

#include "base/OwnedFd.h"
#include "listing/FileStatus.h"
#include "listing/FileSystemTraits.h"
#include "operations/HelpedQueue.h"
#include "operations/TransferMeasure.h"

#include <cstddef>
#include <functional>
#include <string>

namespace ombrel {

/// Adds up what the files of a tree take, on a second thread where there are many of them. Fed and finished
/// on one thread.
class FileTally {
public:
    /// `goesOn` is called on both threads.
    FileTally(const FileSystemTraits& target, std::function<bool()> goesOn);

    /// Names in one folder, each ended by a zero.
    struct Names {
        std::string text;
        std::size_t count = 0;
    };
    /// Looks at regular files of an open folder, sooner or later. `path` (empty or ended by a slash) comes
    /// before the name of one that is refused.
    void add(int folder, const std::string& path, Names names);
    /// A file that was looked at already.
    void count(const FileStatus& status, const std::string& path, const char* name);
    /// An entry that cannot be copied.
    void refuse(std::string path, const FileOperationError& error);

    /// Everything that was added, refusals in the order of their paths.
    [[nodiscard]] TransferMeasure finish();

private:
    struct Batch {
        OwnedFd folder;
        std::string path;
        Names names;
    };

    void look(int folder, const std::string& path, const Names& names, TransferMeasure& measure) const;
    void count(const FileStatus& status, const std::string& path, const char* name,
               TransferMeasure& measure) const;

    /// Fewer files are looked at at once.
    static constexpr std::size_t fewestForTwo = 32;

    const FileSystemTraits& target_;
    const std::function<bool()> goesOn_;
    TransferMeasure own_, helped_; // by either thread
    HelpedQueue<Batch> queue_;     // last, so that it ends before what it uses
};

} // namespace ombrel
