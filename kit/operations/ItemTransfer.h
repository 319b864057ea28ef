#pragma once

#include "operations/ConfirmedSource.h"
#include "operations/CopyEngine.h"
#include "operations/ReplacedItem.h"
#include "operations/StagedItem.h"
#include "operations/TransferDestination.h"
#include "operations/TransferItem.h"
#include "operations/TransferMeasure.h"
#include "operations/TransferRun.h"
#include "operations/TransferSettlement.h"

#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {

/// Brings one item into a folder: finds its name there, settles conflicts, renames it or copies it under a
/// hidden name, verifies it and puts it in place. One object for each item; its results go to the run.
class ItemTransfer {
public:
    /// What it came to.
    enum class End : std::uint8_t {
        done,  ///< the run has its result
        merge, ///< both are folders, and the source's entries are to be brought into the existing one
    };

    ItemTransfer(TransferRun& run, TransferSettlement& settlement,
                 std::shared_ptr<TransferDestination> destination, const TransferItem& item,
                 TransferMeasure& measure);

    /// With the caller asked about what fails, until it succeeds or is given up.
    [[nodiscard]] End transfer();

    /// Of `merge`: the name of the folder in the destination.
    [[nodiscard]] const std::string& mergeName() const noexcept { return target_.name; }

private:
    struct Failure {
        FileOperationError error;
        ErrorFacts facts = {};
    };
    template <typename T>
    using Result = std::expected<T, Failure>;

    /// The name to take, and what has it now, when that is to be replaced.
    struct Target {
        std::string name;
        std::optional<FileStatus> replaced;
    };
    /// How looking for a name ended.
    enum class Found : std::uint8_t { name, merge, skip, cancel };

    /// What an attempt came to. Nothing when the settlement has it.
    enum class Attempt : std::uint8_t { completed, settled, skipped, cancelled, merge };

    [[nodiscard]] Result<Attempt> attempt();
    [[nodiscard]] Result<void> confirm();
    [[nodiscard]] Result<Found> findTarget();
    [[nodiscard]] Result<Found> resolve(const FileStatus& existing);
    [[nodiscard]] Result<std::string> freeName(const std::string& name, int first) const;
    [[nodiscard]] std::string duplicateName() const;
    [[nodiscard]] std::optional<Attempt> ending(Found found) const noexcept;

    [[nodiscard]] bool mayRename() const noexcept;
    [[nodiscard]] Result<std::optional<Attempt>> rename();
    [[nodiscard]] Result<std::optional<Attempt>> keepSource(FileOperationError reason);

    [[nodiscard]] Result<Attempt> copy();
    [[nodiscard]] Result<std::optional<std::map<std::string, FileOperationError>>> askAboutRefusals();
    [[nodiscard]] Result<void> checkRoom() const;
    [[nodiscard]] Result<Attempt> stage(StagedItem& staged);
    [[nodiscard]] Result<CopiedTree> copyTo(StagedItem& staged);
    [[nodiscard]] Result<void> verify(const CopiedTree& copied, StagedItem& staged);
    [[nodiscard]] Result<Attempt> place(CopiedTree copied, StagedItem& staged);
    [[nodiscard]] Result<void> putInPlace(StagedItem& staged);
    [[nodiscard]] Result<Attempt> conclude(CopiedTree copied);

    [[nodiscard]] std::unexpected<Failure> failure(FileOperationError error) const {
        return std::unexpected(Failure{std::move(error)});
    }
    [[nodiscard]] Failure fromDestination(POSIXFailure failure) const;
    [[nodiscard]] FileURL targetURL() const;
    [[nodiscard]] POSIX::Place targetPlace() const noexcept;
    [[nodiscard]] bool isFolder() const noexcept { return source_->status().isDirectory(); }
    void finish(ItemOutcome outcome, ErrorFacts facts = {});
    void finishPlaced(ItemOutcome outcome);
    End end();

    TransferRun& run_;
    TransferSettlement& settlement_;
    std::shared_ptr<TransferDestination> destination_;
    const TransferItem& item_;
    TransferMeasure& measure_;
    std::optional<ConfirmedSource> source_;
    bool isCoarse_ = false; // times of the source's file system prove nothing
    bool sourceNumbersLast_ = true;
    Target target_;
    ReplacedItem::LeftBehind left_;
    ReplacedItem replaced_;
    bool keepsBoth_ = false; // the answer to a conflict, which need not be asked again
};

} // namespace ombrel
