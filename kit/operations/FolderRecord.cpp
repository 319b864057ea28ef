#include "operations/FolderRecord.h"

#include "listing/POSIXEntries.h"
#include "listing/POSIXMetadata.h"

#include <fcntl.h>

#include <vector>

namespace ombrel {

POSIX::Result<FolderRecord> FolderRecord::of(const FileURL& url, POSIX::Place place) {
    const auto folder = POSIX::open(place, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    if (!folder) return std::unexpected(folder.error());
    const auto status = POSIX::status(folder->get());
    if (!status) return std::unexpected(status.error());
    FolderRecord record{url, *status, {}};
    const auto names = POSIX::attributeNames(folder->get());
    for (const auto& name : names.value_or(std::vector<std::string>()))
        if (const auto value = POSIX::attribute(folder->get(), name)) record.attributes[name] = *value;
    return record;
}

POSIX::Result<void> FolderRecord::make() const {
    constexpr std::uint32_t whileMaking = 0700;
    return POSIX::withPath<void>(url, [this](POSIX::Place place) -> POSIX::Result<void> {
        if (auto made = POSIX::makeDirectory(place, whileMaking); !made) return made;
        const auto folder = POSIX::open(place, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
        if (!folder) return std::unexpected(folder.error());
        const auto fresh = POSIX::status(folder->get());
        const bool isOurs = fresh && fresh->owner == status.owner && fresh->group == status.group;
        if (!isOurs) (void)POSIX::changeOwner(folder->get(), status.owner, status.group);
        for (const auto& [name, value] : attributes)
            (void)POSIX::setAttribute(folder->get(), name, value);
        return POSIX::changeMode(folder->get(), status.permissions());
    });
}

} // namespace ombrel
