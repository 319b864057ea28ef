#pragma once

#include "base/FileURL.h"
#include "base/Worker.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ombrel {

/// Reads folders ahead of a walk whose thread keeps waiting for the disk, so that several requests are under
/// way at once and the walk finds the folders in the kernel's memory.
///
/// They stay at home as long as the walk does not wait: a walk through memory is fastest alone. One thread
/// calls the members.
class FolderScouts {
public:
    FolderScouts();

    [[nodiscard]] bool areOut() const noexcept { return !workers_.empty(); }
    /// To be asked before each folder while they are not out: whether this thread has waited often of late.
    [[nodiscard]] bool areWanted();
    /// Starts them. The folders that wait are announced next.
    void sendOut();

    /// The walk will come to these folders, in this order, after all that were announced before. `names` end
    /// in NUL each.
    void announce(const FileURL& parent, std::string names);
    /// The walk is about to read the next announced folder.
    void advance() noexcept;

private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
    std::vector<Worker> workers_;
    std::uint64_t asked_ = 0;
    long waits_ = 0; ///< how often this thread had waited at the last look
};

} // namespace ombrel
