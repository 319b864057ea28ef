#pragma once

#include "base/FileURL.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel::testing {

/// A folder of its own that a test fills in one-line steps; removed with everything in it at the end. Names
/// are bytes and may hold "/" for sub-folders, which must exist.
class TempTree {
public:
    /// `base` is the folder to make it in; empty for the system's temporary folder.
    explicit TempTree(std::string_view base = {});
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    [[nodiscard]] const FileURL& url() const noexcept { return url_; }
    [[nodiscard]] FileURL url(std::string_view name) const;
    [[nodiscard]] std::string path(std::string_view name = {}) const;

    FileURL folder(std::string_view name) const;
    FileURL file(std::string_view name, std::string_view contents = {}) const;
    /// A file of `size` bytes that differ from place to place.
    FileURL fileOfSize(std::string_view name, std::size_t size) const;
    FileURL symlink(std::string_view name, std::string_view target) const;
    FileURL fifo(std::string_view name) const;

    [[nodiscard]] std::string contents(std::string_view name) const;
    [[nodiscard]] bool exists(std::string_view name) const;
    /// Names in the folder (or a sub-folder), sorted by bytes, "." and ".." left out.
    [[nodiscard]] std::vector<std::string> names(std::string_view folder = {}) const;

private:
    FileURL url_;
};

} // namespace ombrel::testing
