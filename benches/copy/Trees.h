#pragma once

#include <string>

namespace ombrel::bench {

/// Makes `folders` folders of `files` files of `bytes` bytes each at `path`, which must not exist. Names as
/// people give them; no two files are equal.
void makeUniformTree(const std::string& path, int folders, int files, std::size_t bytes);

/// Makes a tree of about `files` sources and documents at `path`: nested folders, sizes from empty to a
/// megabyte with most around four kilobytes, scripts, read-only files, links.
void makeMixedTree(const std::string& path, int files);

/// Makes a file of `bytes` bytes that nothing can compress.
void makeFile(const std::string& path, std::size_t bytes);

} // namespace ombrel::bench
