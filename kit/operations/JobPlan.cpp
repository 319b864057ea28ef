#include "operations/JobPlan.h"

#include "operations/ArchiveService.h"
#include "operations/ItemCreation.h"
#include "operations/UndoRecording.h"

#include <memory>
#include <utility>

namespace ombrel {
namespace {

void sample(FileReference& item) {
    if (!item.identity) item = FileReference::sampling(item.url);
}

template <typename Item, typename Reference>
std::vector<FileURL> locations(const std::vector<Item>& items, Reference reference) {
    std::vector<FileURL> urls;
    urls.reserve(items.size());
    for (const auto& item : items)
        urls.push_back(reference(item).url);
    return urls;
}

const FileReference& itself(const FileReference& item) {
    return item;
}

using Remove = OperationReport (FileOperationService::*)(std::span<const FileReference>,
                                                         const OperationHooks&, std::stop_token) const;

JobPlan removal(FileOperationKind kind, const FileOperationService& service, Remove remove,
                std::vector<FileReference> items) {
    JobPlan plan{.kind = kind, .sources = locations(items, itself), .undo = undoByKind};
    plan.work = [service, remove, items = std::move(items)](const OperationHooks& hooks,
                                                            std::stop_token stop) mutable {
        for (auto& item : items)
            sample(item);
        return (service.*remove)(items, hooks, std::move(stop));
    };
    return plan;
}

using Create = OperationReport (FileOperationService::*)(const FileURL&, std::string_view) const;

JobPlan creation(FileOperationKind kind, const FileOperationService& service, Create create,
                 const FileURL& folder, std::string name) {
    JobPlan plan{.kind = kind, .destination = folder, .undo = undoByKind};
    plan.work = [service, create, folder, name = std::move(name)](const OperationHooks&,
                                                                  const std::stop_token&) {
        return (service.*create)(folder, name);
    };
    return plan;
}

} // namespace

JobPlan JobPlan::transfer(const FileOperationService& service, FileOperationKind kind,
                          std::vector<TransferItem> items, const FileURL& destination) {
    JobPlan plan{
        .kind = kind,
        .sources =
            locations(items, [](const TransferItem& item) -> const FileReference& { return item.reference; }),
        .destination = destination,
        .data = kind == FileOperationKind::move ? Data::moved : Data::copied,
    };
    const auto removed = std::make_shared<std::vector<FolderRecord>>();
    plan.work = [service, kind, items = std::move(items), destination,
                 removed](const OperationHooks& hooks, std::stop_token stop) mutable {
        for (auto& item : items)
            sample(item.reference);
        auto recording = hooks;
        recording.removedFolder = [&](const FolderRecord& folder) { removed->push_back(folder); };
        return service.transfer(kind, items, destination, recording, std::move(stop));
    };
    plan.undo = [removed](const OperationReport& report) { return undoStepOf(report, *removed); };
    return plan;
}

JobPlan JobPlan::moveToTrash(const FileOperationService& service, std::vector<FileReference> items) {
    return removal(FileOperationKind::trash, service, &FileOperationService::moveToTrash, std::move(items));
}

JobPlan JobPlan::deletePermanently(const FileOperationService& service, std::vector<FileReference> items) {
    return removal(FileOperationKind::delete_, service, &FileOperationService::deletePermanently,
                   std::move(items));
}

JobPlan JobPlan::putBack(const FileOperationService& service, std::vector<PutBackItem> items,
                         MissingFolders folders) {
    JobPlan plan{
        .kind = FileOperationKind::move,
        .sources =
            locations(items, [](const PutBackItem& item) -> const FileReference& { return item.item; }),
        .undo = undoStepOfPuttingBack,
    };
    if (!items.empty() && items.front().original) plan.destination = items.front().original->parent();
    plan.work = [service, items = std::move(items), folders](const OperationHooks& hooks,
                                                             std::stop_token stop) mutable {
        for (auto& item : items)
            sample(item.item);
        return service.putBack(items, folders, hooks, std::move(stop));
    };
    return plan;
}

JobPlan JobPlan::rename(const FileOperationService& service, const FileReference& item, std::string name) {
    JobPlan plan{.kind = FileOperationKind::rename, .sources = {item.url}, .undo = undoByKind};
    plan.work = [service, item = FileReference(item),
                 name = std::move(name)](const OperationHooks&, const std::stop_token&) mutable {
        sample(item);
        return service.rename(item, name);
    };
    return plan;
}

JobPlan JobPlan::createFolder(const FileOperationService& service, const FileURL& folder,
                              std::string preferredName) {
    return creation(FileOperationKind::newFolder, service, &FileOperationService::createFolder, folder,
                    std::move(preferredName));
}

JobPlan JobPlan::createEmptyFile(const FileOperationService& service, const FileURL& folder,
                                 std::string preferredName) {
    return creation(FileOperationKind::newFile, service, &FileOperationService::createEmptyFile, folder,
                    std::move(preferredName));
}

JobPlan JobPlan::createFromTemplate(const FileOperationService& service, const FileReference& source,
                                    const FileURL& folder, std::string preferredName) {
    JobPlan plan{.kind = FileOperationKind::newFile,
                 .sources = {source.url},
                 .destination = folder,
                 .data = Data::copied,
                 .undo = undoByKind};
    plan.work = [service, source = FileReference(source), folder, name = std::move(preferredName)](
                    const OperationHooks&, const std::stop_token& stop) mutable {
        sample(source);
        return service.createFromTemplate(source, folder, name, stop);
    };
    return plan;
}

JobPlan JobPlan::createLinks(std::vector<FileURL> items, const FileURL& folder) {
    JobPlan plan{
        .kind = FileOperationKind::newFile, .sources = items, .destination = folder, .undo = undoByKind};
    plan.work = [items = std::move(items), folder](const OperationHooks&, const std::stop_token& stop) {
        OperationReport report{FileOperationKind::newFile, {}};
        for (const auto& item : items)
            report.items.push_back(
                {item, stop.stop_requested() ? ItemOutcome::cancelled() : createLink(item, folder)});
        return report;
    };
    return plan;
}

JobPlan JobPlan::compress(std::vector<FileReference> items, const FileURL& folder,
                          std::string preferredName) {
    JobPlan plan{.kind = FileOperationKind::compress,
                 .sources = locations(items, itself),
                 .destination = folder,
                 .data = Data::copied,
                 .undo = undoByKind};
    plan.work = [items = std::move(items), folder,
                 name = std::move(preferredName)](const OperationHooks& hooks, std::stop_token stop) mutable {
        for (auto& item : items)
            sample(item);
        return ArchiveService::compress(items, folder, name, hooks, std::move(stop));
    };
    return plan;
}

JobPlan JobPlan::extract(std::vector<FileReference> archives) {
    JobPlan plan{.kind = FileOperationKind::extract,
                 .sources = locations(archives, itself),
                 .data = Data::copied,
                 .undo = undoByKind};
    if (!archives.empty()) plan.destination = archives.front().url.parent();
    plan.work = [archives = std::move(archives)](const OperationHooks& hooks, std::stop_token stop) mutable {
        for (auto& archive : archives)
            sample(archive);
        return ArchiveService::extract(archives, hooks, std::move(stop));
    };
    return plan;
}

OperationReport JobPlan::reportOfAll(const ItemOutcome& outcome) const {
    OperationReport report{kind, {}};
    for (const auto& source : sources)
        report.items.push_back({source, outcome});
    if (sources.empty()) report.items.push_back({std::nullopt, outcome});
    return report;
}

FileUndoStep undoByKind(const OperationReport& report) {
    return undoStepOf(report);
}

} // namespace ombrel
