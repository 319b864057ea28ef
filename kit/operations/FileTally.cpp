#include "operations/FileTally.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>
#include <utility>

namespace ombrel {

FileTally::FileTally(const FileSystemTraits& target, std::function<bool()> goesOn)
    : target_(target), goesOn_(std::move(goesOn)), queue_([this](Batch& batch, auto hand) {
          if (!goesOn_()) return;
          const bool isOwn = hand == HelpedQueue<Batch>::Hand::owner;
          look(batch.folder.get(), batch.path, batch.names, isOwn ? own_ : helped_);
      }) {}

void FileTally::add(int folder, const std::string& path, Names names) {
    if (names.count == 0) return;
    POSIX::Result<OwnedFd> own = std::unexpected(POSIXFailure{});
    if (names.count >= fewestForTwo) own = POSIX::open(POSIX::Place{folder, "."}, O_PATH | O_DIRECTORY);
    if (!own) return look(folder, path, names, own_);
    queue_.add({std::move(*own), path, std::move(names)});
}

void FileTally::count(const FileStatus& status, const std::string& path, const char* name) {
    count(status, path, name, own_);
}

void FileTally::refuse(std::string path, const FileOperationError& error) {
    own_.refusals.push_back({std::move(path), error});
}

TransferMeasure FileTally::finish() {
    queue_.finish();
    own_.bytes += helped_.bytes;
    own_.allocated += helped_.allocated;
    std::move(helped_.refusals.begin(), helped_.refusals.end(), std::back_inserter(own_.refusals));
    std::ranges::sort(own_.refusals, {}, &TransferMeasure::Refusal::path);
    return std::move(own_);
}

void FileTally::look(int folder, const std::string& path, const Names& names,
                     TransferMeasure& measure) const {
    const char* name = names.text.c_str();
    for (std::size_t i = 0; i < names.count; ++i) {
        const auto status = POSIX::lstat(POSIX::Place{folder, name});
        if (status && status->isRegular()) count(*status, path, name, measure);
        name += std::char_traits<char>::length(name) + 1;
    }
}

void FileTally::count(const FileStatus& status, const std::string& path, const char* name,
                      TransferMeasure& measure) const {
    if (status.size > target_.largestFile) {
        measure.refusals.push_back({path + name, FileOperationError::posix(EFBIG)});
        return;
    }
    measure.bytes += status.size;
    measure.allocated += TransferMeasure::roomOf(status);
}

} // namespace ombrel
