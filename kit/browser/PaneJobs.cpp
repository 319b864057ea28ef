#include "browser/PaneJobs.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "browser/Disposal.h"

#include <QPointer>

#include <optional>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace ombrel {
namespace {

/// Up to here making references costs the main thread less than a worker would.
constexpr std::size_t fewItems = 500;
constexpr std::size_t freedInNoTime = 2000;

/// What a pane showed and had selected when a command was given.
class Outset {
public:
    explicit Outset(BrowserModel& pane)
        : pane_(&pane), location_(pane.location()), selection_(pane.selection()) {}
    Outset(const Outset&) = delete;
    Outset& operator=(const Outset&) = delete;
    ~Outset() {
        if (selection_.list().size() > freedInNoTime) Disposal::elsewhere(std::move(selection_));
    }

    /// The pane, unless it or the user has moved on.
    [[nodiscard]] BrowserModel* paneIfUnchanged() const {
        const bool isThere = pane_ && pane_->location() == location_;
        return isThere && !hasSelectedOthers() ? pane_.data() : nullptr;
    }

    void setLastReport(OperationReport report) const {
        if (pane_) pane_->setLastReport(std::move(report));
    }

private:
    [[nodiscard]] bool hasSelectedOthers() const {
        const auto& now = pane_->selection();
        if (now.empty()) return false;
        if (now.count() > selection_.count()) return true;
        if (now.list().blocks() == selection_.list().blocks()) {
            auto added = now.set();
            added -= selection_.set();
            return !added.empty();
        }
        if (now.count() > fewItems) return true;
        std::unordered_set<std::string_view> left;
        now.set().forEach([&](ItemRef ref) { left.insert(now.list().view(ref).name()); });
        selection_.set().forEach([&](ItemRef ref) { left.erase(selection_.list().view(ref).name()); });
        return !left.empty();
    }

    QPointer<BrowserModel> pane_;
    Location location_;
    FileSelection selection_;
};

/// What the job's thread makes for the main thread, which therefore copies nothing of it.
struct Outcome {
    OperationReport report{FileOperationKind::copy, {}};
    std::vector<FileURL> selects;
    FileUndoStep undo;
};

using Aftermath = PaneJobs::Aftermath;

std::vector<FileURL> whatToSelect(const OperationReport& report, Aftermath::Select select) {
    const bool isFolder = select == Aftermath::Select::folder;
    std::vector<FileURL> results;
    for (const auto& item : report.items) {
        if (!item.outcome.isSuccess() || !item.outcome.destination()) continue;
        auto result = isFolder ? item.outcome.destination()->parent() : *item.outcome.destination();
        if (results.empty() || results.back() != result) results.push_back(std::move(result));
    }
    return results;
}

/// Whatever is revealed first decides: the item, or something that the user went on to.
void renameOnceShown(BrowserModel& pane, const FileURL& item) {
    auto* const wait = new QObject(&pane);
    QObject::connect(&pane, &BrowserModel::locationChanged, wait, &QObject::deleteLater);
    QObject::connect(&pane, &BrowserModel::revealRequested, wait, [&pane, item, wait](std::size_t row) {
        wait->deleteLater();
        QObject::disconnect(&pane, nullptr, wait, nullptr);
        if (pane.items()[row].url() == item && pane.requestRename) pane.requestRename(row);
    });
}

void start(AppServices& services, std::shared_ptr<Outset> outset, JobPlan plan, Aftermath aftermath) {
    const auto outcome = std::make_shared<Outcome>();
    plan.work = [work = std::move(plan.work), outcome,
                 select = aftermath.select](const OperationHooks& hooks, std::stop_token stop) mutable {
        auto report = work(hooks, std::move(stop));
        outcome->report = report;
        if (select != Aftermath::Select::given) outcome->selects = whatToSelect(report, select);
        return report;
    };
    if (plan.undo)
        plan.undo = [undo = std::move(plan.undo), outcome](const OperationReport& report) {
            outcome->undo = undo(report);
            return FileUndoStep();
        };
    // The center goes with the services, and what it has not told then is not told any more.
    services.center().run(std::move(plan), [&services, outset = std::move(outset), outcome,
                                            aftermath = std::move(aftermath)](const JobResult& result) {
        services.undo().record(std::move(outcome->undo));
        if (aftermath.done) aftermath.done(result.report);
        outset->setLastReport(std::move(outcome->report));
        const bool isAllDone = result.report.overall() == OperationReport::Overall::succeeded;
        if (isAllDone && aftermath.select == Aftermath::Select::given) outcome->selects = aftermath.given;
        auto* const pane = outset->paneIfUnchanged();
        if (!pane || outcome->selects.empty()) return;
        if (aftermath.renames) renameOnceShown(*pane, outcome->selects.front());
        pane->selectWhenListed(outcome->selects);
    });
}

} // namespace

void PaneJobs::run(BrowserModel& pane, JobPlan plan, Aftermath aftermath) const {
    start(*services_, std::make_shared<Outset>(pane), std::move(plan), std::move(aftermath));
}

void PaneJobs::run(BrowserModel& pane, std::size_t itemCount, Make make, Aftermath aftermath) const {
    if (itemCount <= fewItems) return run(pane, make(), std::move(aftermath));
    struct Gathering {
        QPointer<AppServices> services;
        std::shared_ptr<Outset> outset;
        Make make;
        Aftermath aftermath;
    };
    const auto gathering = std::make_shared<Gathering>(services_, std::make_shared<Outset>(pane),
                                                       std::move(make), std::move(aftermath));
    const auto gather = [gathering] {
        MainThread::post([gathering, plan = gathering->make()]() mutable {
            auto& known = *gathering;
            if (known.services)
                start(*known.services, std::move(known.outset), std::move(plan), std::move(known.aftermath));
        });
    };
    try {
        Worker("ombrel-gather", [gather](const std::stop_token&) { gather(); }).detach();
    } catch (const std::system_error&) {
        gather(); // no thread is left
    }
}

std::vector<FileReference> PaneJobs::referencesOf(const FileSelection& selection) {
    std::vector<FileReference> references;
    references.reserve(selection.count());
    for (const ItemRef ref : selection.list().order())
        if (selection.set().contains(ref)) references.push_back(selection.list().view(ref).reference());
    return references;
}

std::vector<FileURL> PaneJobs::neighbourOf(const BrowserModel& pane) {
    const auto& selection = pane.selection();
    const auto first = selection.firstRow();
    if (!first || selection.isEverything()) return {};
    const auto current = pane.row(BrowserModel::Place::current);
    const std::size_t from = current && selection.contains(*current) ? *current : *first;
    const auto& items = pane.items();
    for (std::size_t row = from + 1; row < items.size(); ++row)
        if (!selection.contains(row)) return {items[row].url()};
    for (std::size_t row = from; row-- > 0;)
        if (!selection.contains(row)) return {items[row].url()};
    return {};
}

std::optional<FileURL> PaneJobs::targetFolder(const BrowserModel& pane) {
    const auto state = pane.listingState().which();
    const bool isShown = state == ListingState::Case::loaded || state == ListingState::Case::loading;
    const bool isFolder = pane.location().which() == Location::Case::folder;
    return isShown && isFolder ? pane.currentURL() : std::nullopt;
}

} // namespace ombrel
