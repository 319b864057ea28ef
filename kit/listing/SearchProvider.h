#pragma once

#include "base/FileURL.h"
#include "base/ResultStream.h"
#include "listing/DirectoryError.h"
#include "listing/FileItemList.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <stop_token>
#include <string>

namespace ombrel {

/// One wish to have names searched below a folder.
struct SearchRequest {
    FileURL folder;
    std::string text;               ///< contained as NameMatcher says; bytes, normally UTF-8
    std::uint64_t generation = 0;   ///< copied into every item
    bool includesHidden = false;    ///< otherwise hidden items are neither matched nor entered
    bool includesProtected = false; ///< the same for the system's own items (see FileVisibility)

    friend bool operator==(const SearchRequest&, const SearchRequest&) = default;
};

/// Finds every entry below a folder whose own name contains a text, breadth first. Packages and links to
/// folders are matched but never entered, so that no cycle of links can hold a search; folders that cannot be
/// read are passed over.
namespace SearchProvider {

/// The most matches that one search delivers.
inline constexpr std::size_t resultLimit = 10'000;

using Ending = std::expected<void, Stopped<DirectoryError>>;
using Stream = ResultStream<FileItemList, DirectoryError>;

/// Starts the search on a thread of its own and returns at once. Each value holds new matches in the order of
/// their finding: the first match alone and at once, then 200 or more, or as many as came in 150 ms.
/// Destroying the stream ends the search at its next entry.
[[nodiscard]] Stream results(SearchRequest request);

/// The walk itself. Fails when `folder` cannot be read. Blocking; `emit` is called on the calling thread.
Ending walk(const SearchRequest& request, const std::function<void(FileItemList)>& emit,
            std::stop_token stop = {});

} // namespace SearchProvider
} // namespace ombrel
