#include "support/ScratchFolder.h"

#include "support/NamedTree.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace ombrel::bench {

ScratchFolder::ScratchFolder(const std::string& base) : path_(base + "/ombrel-bench-XXXXXX") {
    if (::mkdtemp(path_.data())) return;
    std::perror(("bench: " + base).c_str());
    std::exit(1);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::folder(const std::string& name) const {
    const std::string path = path_ + "/" + name;
    std::filesystem::create_directories(path);
    return path;
}

void makeEmptyFiles(const std::string& folder, long count) {
    const int directory = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::mt19937 random(20);
    for (long i = 0; i < count; ++i) {
        const int made =
            ::openat(directory, usualName(i, random).c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
        if (made < 0) {
            std::perror("bench: making files");
            std::exit(1);
        }
        ::close(made);
    }
    ::close(directory);
}

} // namespace ombrel::bench
