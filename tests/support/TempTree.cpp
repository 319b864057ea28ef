#include "support/TempTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace ombrel::testing {
namespace {

void require(bool done, const std::string& what) {
    if (!done) throw std::runtime_error(what + ": " + std::generic_category().message(errno));
}

} // namespace

TempTree::TempTree(std::string_view base) {
    std::string pattern =
        (base.empty() ? std::filesystem::temp_directory_path().string() : std::string(base)) +
        "/ombrel-test-XXXXXX";
    require(::mkdtemp(pattern.data()) != nullptr, "mkdtemp");
    url_ = *FileURL::fromPath(pattern, FileURL::Mark::directory);
}

TempTree::~TempTree() {
    std::error_code ignored;
    std::filesystem::remove_all(url_.path(), ignored);
}

FileURL TempTree::url(std::string_view name) const {
    return *FileURL::fromPath(path(name));
}

std::string TempTree::path(std::string_view name) const {
    return name.empty() ? url_.path() : url_.path() + "/" + std::string(name);
}

FileURL TempTree::folder(std::string_view name) const {
    require(::mkdir(path(name).c_str(), 0755) == 0, path(name));
    return url(name).marked(FileURL::Mark::directory);
}

FileURL TempTree::file(std::string_view name, std::string_view contents) const {
    const int fd = ::open(path(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(fd >= 0, path(name));
    while (!contents.empty()) {
        const ssize_t count = ::write(fd, contents.data(), contents.size());
        require(count > 0, path(name));
        contents.remove_prefix(static_cast<std::size_t>(count));
    }
    ::close(fd);
    return url(name);
}

FileURL TempTree::fileOfSize(std::string_view name, std::size_t size) const {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24);
    }
    return file(name, bytes);
}

FileURL TempTree::symlink(std::string_view name, std::string_view target) const {
    require(::symlink(std::string(target).c_str(), path(name).c_str()) == 0, path(name));
    return url(name);
}

FileURL TempTree::fifo(std::string_view name) const {
    require(::mkfifo(path(name).c_str(), 0644) == 0, path(name));
    return url(name);
}

std::string TempTree::contents(std::string_view name) const {
    std::ifstream stream(path(name), std::ios::binary);
    require(stream.is_open(), path(name));
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool TempTree::exists(std::string_view name) const {
    struct stat facts;
    return ::lstat(path(name).c_str(), &facts) == 0;
}

std::vector<std::string> TempTree::names(std::string_view folder) const {
    std::vector<std::string> found;
    DIR* stream = ::opendir(path(folder).c_str());
    require(stream != nullptr, path(folder));
    while (const auto* entry = ::readdir(stream))
        if (std::string_view(entry->d_name) != "." && std::string_view(entry->d_name) != "..")
            found.emplace_back(entry->d_name);
    ::closedir(stream);
    std::ranges::sort(found);
    return found;
}

} // namespace ombrel::testing
