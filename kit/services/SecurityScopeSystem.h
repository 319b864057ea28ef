#pragma once

#include "base/FileURL.h"

#include <expected>
#include <string>

namespace ombrel {

/// The operating system's side of folder grants: bookmarks that find a folder again, and scopes that open it
/// to the program. Called on any thread, also on several at once.
class SecurityScopeSystem {
public:
    struct Resolved {
        FileURL url;
        bool isStale = false; ///< usable, and to be made anew
    };
    /// Why a bookmark could not be made or resolved.
    struct Failure {
        bool isNotThere = false; ///< the folder is not there now and may come back
        std::string domain;      ///< for the log: what `code` counts
        long code = 0;
    };

    virtual ~SecurityScopeSystem() = default;

    /// Opens the scope of a folder that a bookmark was resolved to. Each success is balanced by one
    /// `stopAccessing`. Does not block.
    [[nodiscard]] virtual bool startAccessing(const FileURL& url) = 0;
    /// Does not block.
    virtual void stopAccessing(const FileURL& url) = 0;
    /// Blocking.
    [[nodiscard]] virtual std::expected<std::string, Failure> makeBookmark(const FileURL& url) = 0;
    /// Without asking the user and without mounting anything. Blocking.
    [[nodiscard]] virtual std::expected<Resolved, Failure> resolveBookmark(const std::string& bookmark) = 0;
    /// Whether the folder can be opened for reading. Blocking.
    [[nodiscard]] virtual bool isReadableDirectory(const FileURL& url) = 0;
};

} // namespace ombrel
