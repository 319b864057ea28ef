#pragma once

#include "operations/FileOperationService.h"
#include "support/ScriptedAnswers.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace ombrel::testing {

/// A trash that takes nothing, so that no test fills a real one.
class NoTrash : public TrashBackend {
public:
    std::expected<FileURL, TrashFailure> moveToTrash(const FileReference&) override {
        return std::unexpected(TrashFailure{FileOperationError::Case::trashUnavailable});
    }
    TrashListing list(TrashSizes, const std::stop_token&) override { return {}; }
    std::optional<TrashedItem> itemAt(const FileURL&) override { return std::nullopt; }
    void forget(std::span<const FileURL>) override {}
    void tidy(const std::stop_token&) override {}
};

/// A transfer in one line, with its questions answered by a script.
class TransferWorld {
public:
    FileOperationService service{std::make_shared<NoTrash>()};
    ScriptedAnswers answers;
    std::shared_ptr<OperationControl> control = std::make_shared<OperationControl>();
    std::stop_source stop;

    OperationReport run(FileOperationKind kind, const std::vector<FileURL>& sources,
                        const FileURL& destination) {
        std::vector<TransferItem> items;
        for (const auto& source : sources)
            items.emplace_back(FileReference::sampling(source));
        auto hooks = answers.hooks();
        hooks.control = control;
        return service.transfer(kind, items, destination, hooks, stop.get_token());
    }
    OperationReport copy(const std::vector<FileURL>& sources, const FileURL& destination) {
        return run(FileOperationKind::copy, sources, destination);
    }
    OperationReport move(const std::vector<FileURL>& sources, const FileURL& destination) {
        return run(FileOperationKind::move, sources, destination);
    }
};

/// Names that no transfer may leave behind in a folder.
[[nodiscard]] inline std::vector<std::string> stagingNames(const std::vector<std::string>& names) {
    std::vector<std::string> found;
    for (const auto& name : names)
        if (name.starts_with(".hom-staging-")) found.push_back(name);
    return found;
}

} // namespace ombrel::testing
