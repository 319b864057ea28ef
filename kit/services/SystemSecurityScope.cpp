#include "services/SystemSecurityScope.h"

#include "listing/POSIX.h"

#include <utility>

namespace ombrel {
namespace {

using Failure = SecurityScopeSystem::Failure;

constexpr const char* systemDomain = "posix";
constexpr const char* bookmarkDomain = "bookmark";
constexpr long undecodable = 1;
constexpr long replaced = 2;

Failure failureOf(const FolderBookmark::Failure& failure) {
    switch (failure.kind) {
    case FolderBookmark::Failure::Kind::notThere: return {true, systemDomain, failure.reason.number};
    case FolderBookmark::Failure::Kind::replaced: return {false, bookmarkDomain, replaced};
    case FolderBookmark::Failure::Kind::system: break;
    }
    return {false, systemDomain, failure.reason.number};
}

} // namespace

std::expected<std::string, Failure> SystemSecurityScope::makeBookmark(const FileURL& url) {
    const auto bookmark = FolderBookmark::of(url);
    if (!bookmark)
        return std::unexpected(
            Failure{bookmark.error().number == ENOENT, systemDomain, bookmark.error().number});
    return BookmarkData::encoded(*bookmark);
}

std::expected<SecurityScopeSystem::Resolved, Failure>
SystemSecurityScope::resolveBookmark(const std::string& bookmark) {
    const auto decoded = BookmarkData::decoded(bookmark);
    if (!decoded) return std::unexpected(Failure{false, bookmarkDomain, undecodable});
    auto found = decoded->resolve();
    if (!found) return std::unexpected(failureOf(found.error()));
    return Resolved{std::move(found->url), found->isElsewhere};
}

bool SystemSecurityScope::isReadableDirectory(const FileURL& url) {
    return POSIX::openDirectory(url).has_value();
}

} // namespace ombrel
