#pragma once

#include "operations/TrashBackend.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

namespace ombrel::testing {

/// A trash that is just a folder on the volume of the items. They keep their names there; there are no
/// records.
class FolderTrash : public TrashBackend {
public:
    explicit FolderTrash(std::string folder) : folder_(std::move(folder)) {}

    std::expected<FileURL, TrashFailure> moveToTrash(const FileReference& item) override {
        const std::string target = folder_ + "/" + std::string(item.url.name());
        if (std::rename(item.url.path().c_str(), target.c_str()) != 0)
            return std::unexpected(TrashFailure{FileOperationError::posix(errno)});
        return *FileURL::fromPath(target);
    }
    TrashListing list(TrashSizes, const std::stop_token&) override { return {}; }
    std::optional<TrashedItem> itemAt(const FileURL&) override { return std::nullopt; }
    void forget(std::span<const FileURL>) override {}
    void tidy(const std::stop_token&) override {}

private:
    std::string folder_;
};

} // namespace ombrel::testing
