#pragma once

#include "listing/FileReference.h"
#include "operations/FileOperationFaults.h"
#include "operations/FileOperationKind.h"
#include "operations/OperationHooks.h"
#include "operations/OperationReport.h"
#include "operations/PuttingBack.h"
#include "operations/TransferItem.h"
#include "operations/TrashBackend.h"
#include "operations/Trashing.h"

#include <memory>
#include <span>
#include <stop_token>
#include <string_view>
#include <vector>

namespace ombrel {

/// Every file operation there is. A plain value that keeps nothing between calls. Each call is one whole job:
/// it blocks the thread it is made on, asks and reports through the hooks, never throws, and answers with a
/// report.
struct FileOperationService {
    /// `SystemTrash` unless a test has another.
    std::shared_ptr<TrashBackend> trash;
    /// All off unless a test has them on.
    FileOperationFaults faults;

    FileOperationService();
    explicit FileOperationService(std::shared_ptr<TrashBackend> backend) : trash(std::move(backend)) {}

    /// Copies or moves items into a folder; see `transfer`.
    [[nodiscard]] OperationReport transfer(FileOperationKind kind, std::span<const TransferItem> items,
                                           const FileURL& destination, const OperationHooks& hooks,
                                           std::stop_token stop = {}) const;
    /// The same with nothing but answers to conflicts and reports of progress.
    [[nodiscard]] OperationReport copy(std::span<const FileReference> items, const FileURL& destination,
                                       decltype(OperationHooks::conflicts) conflicts,
                                       decltype(OperationHooks::progress) progress = {}) const;
    [[nodiscard]] OperationReport move(std::span<const FileReference> items, const FileURL& destination,
                                       decltype(OperationHooks::conflicts) conflicts,
                                       decltype(OperationHooks::progress) progress = {}) const;
    /// The locations in `destination` that the items would take and that something has already.
    [[nodiscard]] std::vector<FileURL> conflicts(std::span<const FileReference> items,
                                                 const FileURL& destination) const;

    /// Gives one item another name in its folder; see `renameOne`.
    [[nodiscard]] OperationReport rename(const FileReference& reference, std::string_view name) const;
    /// Makes a folder or an empty file under the first free name; see `createExclusive`. The result has no
    /// source.
    [[nodiscard]] OperationReport createFolder(const FileURL& folder, std::string_view preferredName) const;
    [[nodiscard]] OperationReport createEmptyFile(const FileURL& folder,
                                                  std::string_view preferredName) const;

    /// Copies an item into a folder under the first free name; see `copyUnderFreeName`. A report of kind
    /// `newFile`, or `newFolder` for a folder, whose result has no source.
    [[nodiscard]] OperationReport createFromTemplate(const FileReference& source, const FileURL& folder,
                                                     std::string_view preferredName,
                                                     const std::stop_token& stop = {}) const;

    [[nodiscard]] OperationReport moveToTrash(std::span<const FileReference> items,
                                              const OperationHooks& hooks, std::stop_token stop = {}) const;
    /// Moves items out of the trash to where they were.
    [[nodiscard]] OperationReport putBack(std::span<const PutBackItem> items, MissingFolders folders,
                                          const OperationHooks& hooks, std::stop_token stop = {}) const;
    [[nodiscard]] EmptiedTrash emptyTrash(const OperationHooks& hooks, std::stop_token stop = {}) const;
    /// Removes items for good, wherever they are; those that were in the trash lose their records too.
    [[nodiscard]] OperationReport deletePermanently(std::span<const FileReference> items,
                                                    const OperationHooks& hooks,
                                                    std::stop_token stop = {}) const;
};

} // namespace ombrel
