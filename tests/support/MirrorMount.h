#pragma once

#include "base/FileURL.h"

#include <sys/types.h>

#include <expected>
#include <memory>
#include <string>
#include <vector>

namespace ombrel::testing {

/// A FUSE mount that shows another folder, announces no change there, and stops answering when told to. Its
/// process and its mount end with the handle; whoever still waits for an answer gets an error then.
class MirrorMount {
public:
    using Made = std::expected<std::unique_ptr<MirrorMount>, std::string>;

    /// `options` as the file system's program takes them: "hanging", "untyped". `at` is the mount point to
    /// make, empty for one in the temporary folder. The error is a reason for GTEST_SKIP.
    [[nodiscard]] static Made of(const std::string& folder, const std::vector<std::string>& options = {},
                                 const std::string& at = {});
    ~MirrorMount();
    MirrorMount(const MirrorMount&) = delete;
    MirrorMount& operator=(const MirrorMount&) = delete;

    [[nodiscard]] const FileURL& url() const noexcept { return url_; }
    [[nodiscard]] const std::string& path() const noexcept { return url_.path(); }

    void hang() const;
    void answer() const;

private:
    MirrorMount() = default;
    FileURL url_;
    pid_t process_ = -1;
};

} // namespace ombrel::testing
