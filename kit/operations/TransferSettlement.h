#pragma once

#include "operations/ConfirmedSource.h"
#include "operations/SetAside.h"
#include "operations/SourceRemoval.h"
#include "operations/TransferDestination.h"
#include "operations/TransferRun.h"
#include "operations/TreeManifest.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// What a copy that has taken its place still owes: to be safe on its medium, then the removal of what it
/// replaced and of the source it was moved from. Nothing is removed before everything is safe, and many small
/// items share one flush.
class TransferSettlement {
public:
    /// The source of a move.
    struct Moved {
        ConfirmedSource source;
        TreeManifest manifest;
        SourceRemoval::Settings settings;
        std::optional<FileOperationError> keptFor; ///< why a part of it was left out
    };
    /// A copy in its place.
    struct Placed {
        std::size_t result; ///< its place in the run's results
        std::shared_ptr<TransferDestination> destination;
        std::string name;
        bool isFolder = false;
        OwnedFd top; ///< as of `CopiedTree`
        std::optional<SetAside> replaced;
        std::optional<Moved> moved;
    };

    explicit TransferSettlement(TransferRun& run) : run_(run) {}

    /// Takes over what is owed. Settles by itself once enough is waiting.
    void add(Placed placed);
    /// A folder whose contents were moved into an existing one: removed if it is empty by then.
    void addMerged(FileURL source, FileURL destination);
    /// Does what is owed, and completes the run's results.
    void settle();

private:
    [[nodiscard]] POSIX::Result<void> flush();
    void complete(Placed& placed);
    void takeBack(Placed& placed, POSIXFailure failure);
    [[nodiscard]] static POSIX::Result<StagedItem> withdraw(Placed& placed);
    void tellLeftBehind(const Placed& placed, const std::vector<std::string>& names);
    void removeMerged();

    TransferRun& run_;
    std::vector<Placed> placed_;
    std::vector<std::pair<FileURL, FileURL>> merged_;
    std::size_t entries_ = 0;
    std::chrono::steady_clock::time_point since_;
};

} // namespace ombrel
