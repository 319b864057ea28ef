#include "operations/StagingRemoval.h"

#include "listing/POSIXEntries.h"
#include "operations/FolderTrail.h"
#include "operations/TreePlan.h"

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

namespace ombrel {
namespace {

class Removal {
public:
    std::optional<POSIXFailure> remove(POSIX::Place item) {
        const auto removed = POSIX::unlink(item);
        if (removed || removed.error().number == ENOENT) return std::nullopt;
        auto trail = FolderTrail::from(item.folder);
        if (!trail) return trail.error();
        trail_ = std::move(*trail);
        const auto status = POSIX::lstat(item);
        if (!status) return status.error().number == ENOENT ? std::nullopt : std::optional(status.error());
        if (!status->isDirectory()) return removed.error();
        removeTree(item.name);
        return first_;
    }

private:
    struct Level {
        TreePlan::FolderIndex folder;
        std::size_t next = 0;
    };

    void removeTree(const char* top) {
        if (!enter(top, plan_.add())) return;
        while (!levels_.empty()) {
            Level& level = levels_.back();
            const auto& folder = plan_.folder(level.folder);
            if (level.next == folder.count) {
                if (!leave()) return;
                continue;
            }
            const auto& entry = plan_.entry(folder.first + level.next++);
            const char* const name = plan_.name(entry);
            if (entry.folder == TreePlan::noFolder)
                tell(tried([&] { return POSIX::unlink(POSIX::Place{trail_->fd(), name}); }));
            else
                (void)enter(name, entry.folder);
        }
    }

    bool enter(const char* name, TreePlan::FolderIndex folder) {
        auto entered = trail_->enter(name);
        if (!entered && isRefusal(entered.error())) {
            (void)POSIX::changeMode(POSIX::Place{trail_->fd(), name}, S_IRWXU);
            entered = trail_->enter(name);
        }
        if (!tell(entered)) return false;
        auto read = plan_.read(folder, trail_->fd());
        if (!read && isRefusal(read.error()) && relax()) read = plan_.read(folder, trail_->fd());
        (void)tell(read);
        levels_.push_back({folder});
        return true;
    }

    bool leave() {
        const std::string name = trail_->name();
        levels_.pop_back();
        if (!tell(trail_->leave())) return false;
        (void)tell(tried([&] { return POSIX::removeDirectory(POSIX::Place{trail_->fd(), name.c_str()}); }));
        return true;
    }

    /// Gives the owner full access to the present folder; never to the one that holds the item.
    bool relax() {
        return trail_->depth() > 0 &&
               POSIX::changeMode(trail_->fd(), trail_->status().permissions() | S_IRWXU).has_value();
    }

    POSIX::Result<void> tried(const std::function<POSIX::Result<void>()>& call) {
        auto done = call();
        if (!done && isRefusal(done.error()) && relax()) done = call();
        return done;
    }

    static bool isRefusal(POSIXFailure failure) noexcept {
        return failure.number == EACCES || failure.number == EPERM;
    }

    bool tell(const POSIX::Result<void>& done) {
        if (!done && done.error().number != ENOENT && !first_) first_ = done.error();
        return done.has_value();
    }

    std::optional<FolderTrail> trail_; // from the folder that holds the item
    TreePlan plan_;
    std::vector<Level> levels_;
    std::optional<POSIXFailure> first_;
};

} // namespace

std::optional<POSIXFailure> removeStaging(POSIX::Place item) {
    // Passing troubles do not leave anything behind.
    if (!Removal().remove(item)) return std::nullopt;
    return Removal().remove(item);
}

} // namespace ombrel
