#pragma once

#include "listing/FolderBookmark.h"
#include "services/SecurityScopeSystem.h"

#include <optional>
#include <string>

namespace ombrel {

/// Linux has no scopes: what the permission bits allow is open at all times, so starting always succeeds and
/// stopping does nothing. Its bookmarks are `FolderBookmark`s.
class SystemSecurityScope final : public SecurityScopeSystem {
public:
    [[nodiscard]] bool startAccessing(const FileURL&) override { return true; }
    void stopAccessing(const FileURL&) override {}
    [[nodiscard]] std::expected<std::string, Failure> makeBookmark(const FileURL& url) override;
    [[nodiscard]] std::expected<Resolved, Failure> resolveBookmark(const std::string& bookmark) override;
    [[nodiscard]] bool isReadableDirectory(const FileURL& url) override;
};

/// A `FolderBookmark` as bytes: a property list with a version number.
namespace BookmarkData {

[[nodiscard]] std::string encoded(const FolderBookmark& bookmark);
/// Nothing for bytes of any other form, and for those of a later version.
[[nodiscard]] std::optional<FolderBookmark> decoded(const std::string& bytes);

} // namespace BookmarkData
} // namespace ombrel
