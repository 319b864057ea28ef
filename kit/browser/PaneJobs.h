#pragma once

#include "browser/BrowserModel.h"
#include "browser/FileSelection.h"
#include "listing/FileReference.h"
#include "operations/JobBody.h"
#include "operations/JobPlan.h"
#include "services/AppServices.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace ombrel {

/// How the commands of panes run file operations: as jobs of the center, recorded for undo when they have
/// ended, with what came of them selected and revealed in the pane that gave the command.
///
/// A job goes on when its pane has gone. Where the pane has gone and what the user has selected meanwhile is
/// left alone. Main thread only; nothing here takes long, however many items there are.
class PaneJobs {
public:
    /// What a job is to leave behind.
    struct Aftermath {
        enum class Select : std::uint8_t {
            given,   ///< `given`, when all has succeeded
            results, ///< what the items became, as far as the pane shows it
            folder,  ///< the folder that they came into
        };

        Select select = Select::given;
        std::vector<FileURL> given = {};
        /// Whether the one item that is selected is then to be renamed in place.
        bool renames = false;
        /// Called first, whether or not the pane is still there.
        std::function<void(const OperationReport&)> done = {};
    };
    using Make = std::move_only_function<JobPlan()>;

    /// `services` must outlive it, and end its jobs when they go.
    explicit PaneJobs(AppServices& services) : services_(&services) {}

    void run(BrowserModel& pane, JobPlan plan, Aftermath aftermath) const;
    /// `make` is called on a worker when it has to handle many items; it owns what it touches.
    void run(BrowserModel& pane, std::size_t itemCount, Make make, Aftermath aftermath) const;

    [[nodiscard]] AppServices& services() const noexcept { return *services_; }
    /// Whether operations are carried out at all.
    [[nodiscard]] bool mayRun() const noexcept { return !services_->center().isRefusing(); }

    /// The selected items in the order of the rows. Takes time in proportion to the list; any thread.
    [[nodiscard]] static std::vector<FileReference> referencesOf(const FileSelection& selection);
    /// The item that is to be selected when the selected ones have gone: the next one below the keyboard's
    /// row, otherwise the nearest above; none when everything goes.
    [[nodiscard]] static std::vector<FileURL> neighbourOf(const BrowserModel& pane);
    /// The folder that new things come into: nothing at home, among search results and where the folder is
    /// not there or cannot be read.
    [[nodiscard]] static std::optional<FileURL> targetFolder(const BrowserModel& pane);

private:
    AppServices* services_;
};

} // namespace ombrel
