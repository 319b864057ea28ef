#include "operations/FileOperationService.h"

#include "operations/FreeNameCopy.h"
#include "operations/ItemCreation.h"
#include "operations/ItemRename.h"
#include "operations/PermanentDeletion.h"
#include "operations/SystemTrash.h"
#include "operations/Transfer.h"

#include <utility>
#include <vector>

namespace ombrel {

FileOperationService::FileOperationService() : trash(std::make_shared<SystemTrash>()) {}

OperationReport FileOperationService::transfer(FileOperationKind kind, std::span<const TransferItem> items,
                                               const FileURL& destination, const OperationHooks& hooks,
                                               std::stop_token stop) const {
    return ombrel::transfer(kind, items, destination, hooks, *trash, faults, std::move(stop));
}

OperationReport FileOperationService::copy(std::span<const FileReference> items, const FileURL& destination,
                                           decltype(OperationHooks::conflicts) conflicts,
                                           decltype(OperationHooks::progress) progress) const {
    const OperationHooks hooks{std::move(conflicts), {}, std::move(progress), {}, {}};
    return transfer(FileOperationKind::copy, std::vector<TransferItem>(items.begin(), items.end()),
                    destination, hooks);
}

OperationReport FileOperationService::move(std::span<const FileReference> items, const FileURL& destination,
                                           decltype(OperationHooks::conflicts) conflicts,
                                           decltype(OperationHooks::progress) progress) const {
    const OperationHooks hooks{std::move(conflicts), {}, std::move(progress), {}, {}};
    return transfer(FileOperationKind::move, std::vector<TransferItem>(items.begin(), items.end()),
                    destination, hooks);
}

std::vector<FileURL> FileOperationService::conflicts(std::span<const FileReference> items,
                                                     const FileURL& destination) const {
    return ombrel::conflicts(items, destination);
}

OperationReport FileOperationService::rename(const FileReference& reference, std::string_view name) const {
    return {FileOperationKind::rename, {{reference.url, renameOne(reference, name)}}};
}

OperationReport FileOperationService::createFolder(const FileURL& folder,
                                                   std::string_view preferredName) const {
    return {FileOperationKind::newFolder,
            {{std::nullopt, createExclusive(folder, preferredName, NewItem::folder)}}};
}

OperationReport FileOperationService::createEmptyFile(const FileURL& folder,
                                                      std::string_view preferredName) const {
    return {FileOperationKind::newFile,
            {{std::nullopt, createExclusive(folder, preferredName, NewItem::file)}}};
}

OperationReport FileOperationService::createFromTemplate(const FileReference& source, const FileURL& folder,
                                                         std::string_view preferredName,
                                                         const std::stop_token& stop) const {
    auto outcome = copyUnderFreeName(source, folder, preferredName, *trash, stop);
    const auto& made = outcome.destination();
    const bool isFolder = made && made->isMarkedDirectory();
    return {isFolder ? FileOperationKind::newFolder : FileOperationKind::newFile,
            {{std::nullopt, std::move(outcome)}}};
}

OperationReport FileOperationService::moveToTrash(std::span<const FileReference> items,
                                                  const OperationHooks& hooks, std::stop_token stop) const {
    return ombrel::moveToTrash(*trash, items, hooks, std::move(stop));
}

OperationReport FileOperationService::putBack(std::span<const PutBackItem> items, MissingFolders folders,
                                              const OperationHooks& hooks, std::stop_token stop) const {
    return ombrel::putBack(*trash, items, folders, hooks, std::move(stop));
}

EmptiedTrash FileOperationService::emptyTrash(const OperationHooks& hooks, std::stop_token stop) const {
    return ombrel::emptyTrash(*trash, hooks, std::move(stop));
}

OperationReport FileOperationService::deletePermanently(std::span<const FileReference> items,
                                                        const OperationHooks& hooks,
                                                        std::stop_token stop) const {
    auto report = ombrel::deletePermanently(items, hooks, std::move(stop));
    std::vector<FileURL> gone;
    for (const auto& item : report.items)
        if (item.outcome.isSuccess()) gone.push_back(*item.source);
    trash->forget(gone);
    return report;
}

} // namespace ombrel
