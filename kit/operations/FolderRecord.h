#pragma once

#include "base/FileURL.h"
#include "listing/FileStatus.h"
#include "listing/POSIX.h"

#include <map>
#include <string>

namespace ombrel {

/// What an empty folder was: enough to make it again as it was, times aside.
struct FolderRecord {
    FileURL url;
    FileStatus status;
    std::map<std::string, std::string> attributes; ///< access control lists among them

    /// Of the folder at `place`, which `url` names. Blocking, like the rest.
    [[nodiscard]] static POSIX::Result<FolderRecord> of(const FileURL& url, POSIX::Place place);
    /// Makes the folder where it was. EEXIST when the name is taken. What the file system no longer takes of
    /// owner and attributes is left out.
    [[nodiscard]] POSIX::Result<void> make() const;
};

} // namespace ombrel
