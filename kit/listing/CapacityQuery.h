#pragma once

#include "base/OwnedFd.h"
#include "listing/MountTable.h"
#include "listing/POSIXFileSystem.h"

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {

/// The capacities of several mounts, asked for all at once, so that one that does not answer holds up none of
/// the others.
///
/// Servers and FUSE processes are asked by a child process each: the kernel lets nothing, not even the end of
/// the process, come between a caller and a FUSE process that has taken a request. A mount whose last
/// question is still open is not asked again and counts as not answering until that question ends. Blocking
/// calls; one thread.
class CapacityQuery {
public:
    /// Asks. Mounts that cannot hang are answered on return.
    CapacityQuery(const MountTable& table, std::span<const Mount* const> mounts);
    /// Gives up what is not answered.
    ~CapacityQuery();
    CapacityQuery(const CapacityQuery&) = delete;
    CapacityQuery& operator=(const CapacityQuery&) = delete;

    /// Waits until all are answered, for at most `limit`. Answers whether all are.
    bool wait(std::chrono::milliseconds limit, std::stop_token stop = {});

    [[nodiscard]] std::size_t size() const noexcept { return questions_.size(); }
    /// Of the mount at that place of the list; nothing while it has not answered.
    [[nodiscard]] const std::optional<POSIX::Result<POSIX::Capacity>>& answer(std::size_t index) const {
        return questions_[index].answer;
    }

private:
    /// Names a mount while it lasts.
    using Key = std::pair<std::uint64_t, std::uint64_t>;
    struct Question {
        Key key;
        std::optional<POSIX::Result<POSIX::Capacity>> answer;
        pid_t child = -1; ///< who asks
        OwnedFd output;   ///< of the child
        std::string text;
    };
    struct Abandoned;

    void ask(Question& question, const FileURL& point);
    static void hear(Question& question);

    std::vector<Question> questions_;
};

} // namespace ombrel
