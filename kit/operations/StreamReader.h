#pragma once

#include "base/OwnedFd.h"

#include <mutex>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace ombrel {

/// What a tool writes to one pipe, taken in on a thread of its own and handed out in lines. The functions are
/// for one other thread.
class StreamReader {
public:
    /// Without a pipe there is nothing to read and the stream has ended.
    explicit StreamReader(OwnedFd pipe = OwnedFd());
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;

    /// Removes and answers every complete line (bytes), without its line feed.
    [[nodiscard]] std::vector<std::string> takeLines();
    /// The incomplete rest, which stays. Of one that grows beyond all bounds the beginning is forgotten.
    [[nodiscard]] std::string pendingLine() const;

    /// Released once, at the end of the stream.
    std::binary_semaphore done{0};
    const bool active;

private:
    void read(const std::stop_token& stop);
    void receive(const char* bytes, std::size_t size);

    mutable std::mutex lock_; // guards buffer_
    std::string buffer_;      // received and not yet taken
    OwnedFd pipe_;
    std::jthread thread_; // the last member: it uses the others
};

} // namespace ombrel
