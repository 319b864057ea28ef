#include "operations/StagingSweep.h"

#include "base/Log.h"
#include "listing/EntryReader.h"
#include "listing/MountTable.h"
#include "listing/POSIXEntries.h"
#include "listing/POSIXLock.h"
#include "listing/POSIXRename.h"
#include "operations/ItemNames.h"
#include "operations/SetAside.h"
#include "operations/StagingName.h"
#include "operations/StagingRemoval.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

class Sweep {
public:
    Sweep(const FileURL& url, OwnedFd folder, bool numbersLast, FileTime youngest, TrashBackend& trash)
        : url_(url), folder_(std::move(folder)), numbersLast_(numbersLast), youngest_(youngest),
          trash_(trash) {}

    std::int64_t run() {
        std::vector<std::string> others;
        std::vector<std::pair<std::string, SetAsideRecord>> records;
        for (auto& name : names()) {
            const auto status = POSIX::lstat(place(name));
            if (!status) continue;
            if (auto record = SetAsideRecord::read(place(name), *status))
                records.emplace_back(std::move(name), std::move(*record));
            else
                others.push_back(std::move(name));
        }
        for (const auto& [name, record] : records)
            settle(name, record);
        std::int64_t removed = 0;
        for (const auto& name : others)
            if (!protected_.contains(name) && isStale(name) && !isHeld(name) && !removeStaging(place(name)))
                ++removed;
        return removed;
    }

private:
    [[nodiscard]] POSIX::Place place(const std::string& name) const { return {folder_.get(), name.c_str()}; }

    std::vector<std::string> names() {
        std::vector<std::string> found;
        EntryReader reader;
        reader.begin(folder_.get());
        for (;;) {
            const auto entry = reader.next();
            if (!entry || !*entry) return found;
            if (StagingName::isOne((*entry)->name)) found.emplace_back((*entry)->name);
        }
    }

    /// A copy carries old times and an item that was set aside keeps its own; the time of its last change of
    /// status tells when it came here.
    bool isStale(const std::string& name) {
        const auto status = POSIX::lstat(place(name));
        return status && std::max(status->modified, status->changed) < youngest_;
    }

    /// Whether a live job is at it. What cannot be opened cannot be asked; what cannot be locked anywhere is
    /// judged by its age.
    bool isHeld(const std::string& name) {
        const auto item = POSIX::open(place(name), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
        if (!item) return false;
        const auto locked = POSIX::tryLock(item->get());
        return locked && !*locked;
    }

    void settle(const std::string& name, const SetAsideRecord& record) {
        const auto aside = POSIX::lstat(place(record.stagingName));
        const bool isAside = aside && record.describes(*aside, numbersLast_);
        if (isAside) protected_.insert(record.stagingName);
        if (!isStale(name)) {
            protected_.insert(record.stagingName);
            return;
        }
        if (aside && isHeld(record.stagingName)) return;
        if (isAside && !restore(record)) return;
        (void)POSIX::unlink(place(name));
    }

    bool restore(const SetAsideRecord& record) {
        const auto back = POSIX::renameExclusive(place(record.stagingName), place(record.targetName));
        if (back) {
            Log::info(Log::Category::operations, "put back an item that had been set aside");
            return true;
        }
        return back.error().number == EEXIST && sendToTrash(record);
    }

    /// Under a name that tells what it was.
    bool sendToTrash(const SetAsideRecord& record) {
        const auto keep = record.type == S_IFDIR ? KeepExtension::no : KeepExtension::yes;
        constexpr int lastTry = 500;
        for (int number = 2; number <= lastTry; ++number) {
            const auto name = ItemNames::numbered(record.targetName, number, keep);
            const auto renamed = POSIX::renameExclusive(place(record.stagingName), place(name));
            if (!renamed && renamed.error().number == EEXIST) continue;
            if (!renamed) return false;
            const auto item = FileReference::sampling(url_.appending(name));
            if (trash_.moveToTrash(item)) {
                Log::info(Log::Category::operations, "moved an item that had been replaced to the trash");
                return true;
            }
            (void)POSIX::renameExclusive(place(name), place(record.stagingName));
            return false;
        }
        return false;
    }

    const FileURL& url_;
    OwnedFd folder_;
    bool numbersLast_;
    FileTime youngest_; // what is older is stale
    TrashBackend& trash_;
    std::set<std::string> protected_;
};

} // namespace

void sweepStaleStaging(const FileURL& folder, std::chrono::seconds minimumAge,
                       std::chrono::system_clock::time_point now, TrashBackend& trash) {
    auto open = POSIX::open(folder, O_RDONLY | O_DIRECTORY);
    if (!open) return;
    const auto status = POSIX::status(open->get());
    if (!status) return;
    const bool numbersLast = !MountTable::current().traits(*status).renumbersInodes;
    using namespace std::chrono;
    const auto limit = duration_cast<nanoseconds>((now - minimumAge).time_since_epoch()).count();
    constexpr std::int64_t second = 1'000'000'000;
    const FileTime youngest{limit / second, static_cast<std::uint32_t>(limit % second)};
    const auto removed = Sweep(folder, std::move(*open), numbersLast, youngest, trash).run();
    if (removed > 0)
        Log::info(Log::Category::operations, "removed " + std::to_string(removed) + " stale staging item(s)");
}

} // namespace ombrel
