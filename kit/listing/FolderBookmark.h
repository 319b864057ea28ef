#pragma once

#include "base/FileURL.h"
#include "base/POSIXFailure.h"
#include "listing/FileStatus.h"
#include "listing/MountTable.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace ombrel {

/// What tells one file system from another, also after it was mounted again. A plain value.
struct VolumeIdentity {
    std::string uuid = {}; ///< of the file system; empty where there is none or it cannot be read
    std::string type;      ///< as the mount table spells it
    std::string source;    ///< device path, "host:/share"
    std::uint64_t device = 0;

    enum class Likeness : std::uint8_t {
        different,
        possible, ///< nothing speaks against it, and nothing proves it
        same,
    };

    /// May ask the device behind the mount. Blocking, though never on the mount.
    [[nodiscard]] static VolumeIdentity of(const Mount& mount);
    [[nodiscard]] Likeness likeness(const VolumeIdentity& other) const;

    friend bool operator==(const VolumeIdentity&, const VolumeIdentity&) = default;
};

/// A folder remembered so that it is found again: after it or one of the folders it lies in was renamed, and
/// after its volume was mounted at another place. A plain value; its functions block.
class FolderBookmark {
public:
    /// A folder on the way from the volume's root to the one that is remembered.
    struct Step {
        std::string name;        ///< bytes; empty for the root
        std::uint64_t inode = 0; ///< 0 when it could not be looked at
        FileTime born = {};      ///< zero where the file system does not keep it

        friend bool operator==(const Step&, const Step&) = default;
    };

    struct Failure {
        enum class Kind : std::uint8_t {
            notThere, ///< the volume is away, or the folder is gone from where it could be found
            replaced, ///< something else stands at its path
            system,   ///< a call failed in another way
        };
        Kind kind;
        POSIXFailure reason = {}; ///< the number 0 when no call failed

        friend bool operator==(const Failure&, const Failure&) = default;
    };
    struct Resolution {
        FileURL url;
        bool isElsewhere = false; ///< not where it was; the bookmark is to be made anew

        friend bool operator==(const Resolution&, const Resolution&) = default;
    };

    /// Of the folder at `url`; links are followed. ENOTDIR for anything else.
    [[nodiscard]] static std::expected<FolderBookmark, POSIXFailure> of(const FileURL& url);

    /// Where the folder is now. Asked are, in this order: the path; the folders on the way, each looked for
    /// by what it is in the deepest one that is still itself; the same path on the same volume mounted
    /// elsewhere. The disk is never searched, and nothing is mounted. What stands at the path but is another
    /// folder is not taken for it.
    ///
    /// On file systems that renumber inodes a folder at the same path of the same volume counts as the same.
    /// A folder that may not be looked at is answered by its path.
    [[nodiscard]] std::expected<Resolution, Failure> resolve() const;

    FileURL path;            ///< as it was given
    VolumeIdentity volume;   ///< that the folder lies on
    std::string root;        ///< what of the volume was mounted there, as in `Mount::root`
    std::vector<Step> steps; ///< from the mount's root to the folder

    friend bool operator==(const FolderBookmark&, const FolderBookmark&) = default;
};

} // namespace ombrel
