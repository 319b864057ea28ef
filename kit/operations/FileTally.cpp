#include "operations/FileTally.h"

#include "listing/POSIXEntries.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>

namespace ombrel {

FileTally::FileTally(const FileSystemTraits& target, std::function<bool()> goesOn)
    : target_(target), goesOn_(std::move(goesOn)) {}

FileTally::~FileTally() {
    end();
}

void FileTally::add(int folder, const std::string& path, Names names) {
    if (names.count == 0) return;
    POSIX::Result<OwnedFd> own = std::unexpected(POSIXFailure{});
    if (names.count >= fewestForTwo) own = POSIX::open(POSIX::Place{folder, "."}, O_PATH | O_DIRECTORY);
    if (!own) return look(folder, path, names, own_);
    bool isFull = false, isOnly = false;
    {
        const std::scoped_lock lock(lock_);
        isFull = waiting_.size() >= longestQueue;
        isOnly = waiting_.empty();
        waiting_.push_back({std::move(*own), path, std::move(names)});
    }
    // One folder may be all there is, and then the other thread is not worth its start.
    if (!isOnly) startHelper();
    changed_.notify_one();
    if (isFull) (void)takeOne(own_);
}

void FileTally::count(const FileStatus& status, const std::string& path, const char* name) {
    count(status, path, name, own_);
}

void FileTally::refuse(std::string path, const FileOperationError& error) {
    own_.refusals.push_back({std::move(path), error});
}

TransferMeasure FileTally::finish() {
    while (takeOne(own_)) {
    }
    end();
    own_.bytes += helped_.bytes;
    own_.allocated += helped_.allocated;
    std::move(helped_.refusals.begin(), helped_.refusals.end(), std::back_inserter(own_.refusals));
    std::ranges::sort(own_.refusals, {}, &TransferMeasure::Refusal::path);
    return std::move(own_);
}

void FileTally::end() {
    if (!helper_.joinable()) return;
    {
        const std::scoped_lock lock(lock_);
        isFed_ = false;
    }
    changed_.notify_one();
    helper_.join();
}

void FileTally::startHelper() {
    if (helper_.joinable()) return;
    try {
        helper_ = std::thread([this] { help(); });
    } catch (const std::system_error&) {
        // A system that has no thread left counts on one.
    }
}

void FileTally::help() {
    for (;;) {
        {
            std::unique_lock lock(lock_);
            changed_.wait(lock, [this] { return !waiting_.empty() || !isFed_; });
            if (waiting_.empty()) return;
        }
        (void)takeOne(helped_);
    }
}

bool FileTally::takeOne(TransferMeasure& measure) {
    Batch batch;
    {
        const std::scoped_lock lock(lock_);
        if (waiting_.empty()) return false;
        batch = std::move(waiting_.front());
        waiting_.pop_front();
    }
    if (goesOn_()) look(batch.folder.get(), batch.path, batch.names, measure);
    return true;
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
