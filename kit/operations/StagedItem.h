#pragma once

#include "base/OwnedFd.h"
#include "listing/POSIX.h"

#include <optional>
#include <string>

namespace ombrel {

/// A hidden item of ours in a destination folder. It is removed with its handle, unless it has got another
/// name by then. Move-only.
class StagedItem {
public:
    /// A fresh name in `folder`, which must outlive this; nothing has it yet.
    explicit StagedItem(int folder);
    /// An item that has such a name already.
    StagedItem(int folder, std::string name) : folder_(folder), name_(std::move(name)) {}
    /// Gives the entry `place` such a name, if it still is the one with that identity, where there is one;
    /// EEXIST when it is not.
    [[nodiscard]] static POSIX::Result<StagedItem> takenFrom(POSIX::Place place,
                                                             const std::optional<FileIdentity>& identity);
    StagedItem(StagedItem&& other) noexcept;
    StagedItem& operator=(StagedItem&&) = delete;
    ~StagedItem();

    [[nodiscard]] POSIX::Place place() const noexcept { return {folder_, name_.c_str()}; }
    [[nodiscard]] const std::string& name() const noexcept { return name_; }

    /// Keeps other jobs from sweeping it as long as the descriptor is open.
    void hold(OwnedFd top) { top_ = std::move(top); }
    /// What `hold` was given; -1 when nothing was.
    [[nodiscard]] int top() const noexcept { return top_.get(); }

    /// It is not ours any more: it was put in place.
    void release() noexcept { isOurs_ = false; }
    /// Removes it now. Answers why it could not; then it is left behind.
    [[nodiscard]] std::optional<POSIXFailure> remove();

private:
    int folder_;
    std::string name_;
    OwnedFd top_;
    bool isOurs_ = true;
};

} // namespace ombrel
