#include "listing/FolderScouts.h"

#include "listing/EntryReader.h"
#include "listing/POSIX.h"

#include <fcntl.h>
#include <sys/resource.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string_view>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

constexpr int scoutCount = 4;
/// How many folders lie between two looks at the waiting, and how many waits among them call for scouts.
constexpr std::uint64_t interval = 16;
constexpr long manyWaits = 8;

/// How often the calling thread has given up the processor to wait for something.
long waitsOfThread() noexcept {
    rusage usage{};
    return ::getrusage(RUSAGE_THREAD, &usage) == 0 ? usage.ru_nvcsw : 0;
}

void readThrough(const FileURL& folder, EntryReader& reader) {
    const auto fd = POSIX::open(folder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK);
    if (!fd) return;
    reader.begin(fd->get());
    for (;;) {
        const auto entry = reader.next();
        if (!entry || !*entry) return;
    }
}

} // namespace

struct FolderScouts::Shared {
    struct Group {
        FileURL parent;
        std::string names;
        std::size_t next = 0; // offset of the first name not yet passed
    };

    std::mutex mutex; // guards everything below
    std::condition_variable_any changed;
    std::deque<Group> groups;
    std::uint64_t taken = 0;                // folders that the scouts have taken or skipped
    std::atomic<std::uint64_t> reached = 0; // folders that the walk has come to; not guarded

    /// The next folder that the walk has not come to yet; nothing once `stop` came.
    std::optional<FileURL> take(const std::stop_token& stop) {
        std::unique_lock lock(mutex);
        while (changed.wait(lock, stop, [this] { return !groups.empty(); })) {
            Group& group = groups.front();
            const std::string_view name(group.names.c_str() + group.next);
            group.next += name.size() + 1;
            std::optional<FileURL> folder;
            if (taken++ >= reached) folder = group.parent.appending(name, FileURL::Mark::directory);
            if (group.next >= group.names.size()) groups.pop_front();
            if (folder) return folder;
        }
        return std::nullopt;
    }
};

FolderScouts::FolderScouts() : shared_(std::make_shared<Shared>()), waits_(waitsOfThread()) {}

bool FolderScouts::areWanted() {
    if (++asked_ % interval != 0) return false;
    const long waits = waitsOfThread();
    return waits - std::exchange(waits_, waits) >= manyWaits;
}

void FolderScouts::sendOut() {
    try {
        for (int i = 0; i < scoutCount; ++i)
            workers_.emplace_back("ombrel-scout", [shared = shared_](std::stop_token stop) {
                EntryReader reader;
                while (const auto folder = shared->take(stop))
                    readThrough(*folder, reader);
            });
    } catch (const std::system_error&) {
        // The walk goes on with as many as there are.
    }
}

void FolderScouts::announce(const FileURL& parent, std::string names) {
    const std::scoped_lock lock(shared_->mutex);
    shared_->groups.push_back({parent, std::move(names), 0});
    shared_->changed.notify_all();
}

void FolderScouts::advance() noexcept {
    shared_->reached.fetch_add(1, std::memory_order_relaxed);
}

} // namespace ombrel
