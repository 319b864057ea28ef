#pragma once

#include "base/FileURL.h"

#include <expected>
#include <memory>
#include <string>

namespace ombrel::testing {

/// A mount that a test makes and that goes with its handle (lazily, so that a busy one goes too), together
/// with its mount point and its image. Needs root; where the machine refuses, the factories answer with the
/// reason, for GTEST_SKIP.
class TestMount {
public:
    using Made = std::expected<std::unique_ptr<TestMount>, std::string>;

    /// An empty folder of memory. `at` is the mount point to make, empty for one in the temporary folder.
    [[nodiscard]] static Made tmpfs(const std::string& at = {}, const std::string& options = "size=16m");
    /// The folder `what` again, at another place.
    [[nodiscard]] static Made bind(const std::string& what, const std::string& at = {});
    /// The folder `backing` through a FUSE driver that refuses every flag of renameat2. `options` are those
    /// of support/fuse/limited.c: "nolinks", "noattributes", "older=600", "fail=write,number=5,after=3".
    [[nodiscard]] static Made limited(const std::string& backing, const std::string& options = {},
                                      const std::string& at = {});
    /// A fresh file system on a loop device: "ext4", "ext4-casefold", "ext2", "btrfs", "xfs", "vfat",
    /// "exfat", "ntfs"; the last two by their FUSE drivers where the kernel has none.
    [[nodiscard]] static Made image(const std::string& format, const std::string& at = {},
                                    const std::string& label = {});

    TestMount(const TestMount&) = delete;
    TestMount& operator=(const TestMount&) = delete;
    ~TestMount();

    [[nodiscard]] const FileURL& url() const noexcept { return url_; }
    [[nodiscard]] const std::string& path() const noexcept { return url_.path(); }
    /// "/dev/loop3"; empty for other kinds.
    [[nodiscard]] const std::string& device() const noexcept { return device_; }

    /// Unmounts and leaves the image for `remount`. Answers whether it went.
    bool unmount();
    /// Mounts the same device again, here or at a new place that is made.
    bool remount(const std::string& at = {});
    /// Makes what is mounted unwritable, and writable again.
    bool setReadOnly(bool readOnly);
    /// Moves the mount to a new place that is made, without unmounting (mount --move).
    bool moveTo(const std::string& at);

private:
    TestMount() = default;
    bool makePoint(const std::string& at);
    bool attach();

    FileURL url_;
    std::string type_;  // for mount -t
    std::string image_; // path of the image file
    std::string device_;
    bool isMounted_ = false;
};

} // namespace ombrel::testing
